# Run by CPack over the files that are to be packed: which compiler made them is of no use where they are installed.
find_program(OBJCOPY objcopy REQUIRED)
file(GLOB_RECURSE candidates ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/usr/bin/* ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/usr/libexec/*)
foreach(candidate IN LISTS candidates)
  execute_process(COMMAND ${OBJCOPY} --remove-section=.comment ${candidate} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
