# How everything of ours is compiled, and the three functions that the folders use.
option(HALVANE_TESTS "Build the tests" ON)
option(HALVANE_BENCH "Build the benches" ON)
option(HALVANE_BENCH_PEERS "Build the HTTP bench, with the libraries that it compares (packaging/bench-packages.txt)" OFF)
set(HALVANE_SANITIZE "" CACHE STRING "address (with undefined behaviour) or thread; empty for none")

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
      CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${CCACHE})
endif()
find_program(MOLD mold)
if(MOLD)
  add_link_options(-fuse-ld=mold)
endif()

add_link_options(-Wl,--as-needed)  # a tool that writes one line does not load the libraries of a folder that it takes one class from

# What is shipped is hardened as Debian's own programs are. That it is position-independent is the compiler's default there.
set(shipped $<CONFIG:Release,RelWithDebInfo>)
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
  set(of_this_processor ";-fcf-protection")
endif()
add_compile_options(
  "$<${shipped}:-fstack-protector-strong;-fstack-clash-protection${of_this_processor};-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>"
  "$<${shipped}:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>")  # debug symbols do not tell where the clone was
add_link_options("$<${shipped}:-Wl,-z,relro,-z,now>")

add_library(halvane_warnings INTERFACE)
target_compile_options(halvane_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough
  -Wcast-align -Wformat=2 -Werror
  -Wno-missing-field-initializers)  # designated initialisers leave out what has a default

if(HALVANE_SANITIZE STREQUAL "address")
  # Instrumented code makes this warning see values that are never read.
  add_compile_options(-Wno-maybe-uninitialized -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
elseif(HALVANE_SANITIZE STREQUAL "thread")
  # Our GCC cannot instrument stand-alone fences; asio has one, harmless under its own lock.
  add_compile_options(-fsanitize=thread -Wno-tsan)
  add_link_options(-fsanitize=thread)
endif()

# halvane_library(name SOURCES … PUBLIC libs… PRIVATE libs…): the folder's static library halvane_<name>.
function(halvane_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
  add_library(halvane_${name} STATIC ${ARG_SOURCES})
  target_include_directories(halvane_${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>)
  target_link_libraries(halvane_${name} PUBLIC ${ARG_PUBLIC} PRIVATE $<BUILD_INTERFACE:halvane_warnings> ${ARG_PRIVATE})
endfunction()

# halvane_test(area SOURCES … LIBS …): one program halvane_<area>_test, each of its cases a CTest test.
# ENV adds variables to each of them; LABELS marks them; MAIN is the library with another main function.
function(halvane_test area)
  cmake_parse_arguments(ARG "" "MAIN" "SOURCES;LIBS;ENV;LABELS" ${ARGN})
  if(NOT ARG_MAIN)
    set(ARG_MAIN halvane_test_support)
  endif()
  add_executable(halvane_${area}_test ${ARG_SOURCES})
  target_include_directories(halvane_${area}_test PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(halvane_${area}_test PRIVATE halvane_warnings ${ARG_MAIN} ${ARG_LIBS})
  gtest_discover_tests(halvane_${area}_test DISCOVERY_MODE PRE_TEST
    TEST_PREFIX "${area}." PROPERTIES TIMEOUT 120 ENVIRONMENT "${ARG_ENV}" LABELS "${ARG_LABELS}")
endfunction()
