# The request layer for programs of others: cmake --install BUILD --component request. No part of the client's installation.
set(HALVANE_REQUEST_LIBRARIES halvane_request_layer halvane_request halvane_http halvane_linux_http halvane_linux_base
  halvane_linux_device halvane_platform halvane_util)
set(HALVANE_REQUEST_CMAKE ${CMAKE_INSTALL_LIBDIR}/cmake/HalvaneRequest)
set_target_properties(halvane_request_layer PROPERTIES EXPORT_NAME request)
install(TARGETS ${HALVANE_REQUEST_LIBRARIES} EXPORT HalvaneRequest
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}/halvane COMPONENT request EXCLUDE_FROM_ALL
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/halvane)
install(EXPORT HalvaneRequest FILE HalvaneRequestTargets.cmake NAMESPACE Halvane:: DESTINATION ${HALVANE_REQUEST_CMAKE}
  COMPONENT request EXCLUDE_FROM_ALL)
install(FILES ${CMAKE_CURRENT_LIST_DIR}/HalvaneRequestConfig.cmake.in DESTINATION ${HALVANE_REQUEST_CMAKE}
  RENAME HalvaneRequestConfig.cmake COMPONENT request EXCLUDE_FROM_ALL)
# What a public header of the layer reaches, and no more.
foreach(folder IN ITEMS request request/factory)
  file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${folder}/*.h)
  install(FILES ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/halvane/${folder} COMPONENT request EXCLUDE_FROM_ALL)
endforeach()
foreach(header IN ITEMS
    http/ResponseObject.h
    platform/DispatchQueue.h platform/HttpMessage.h platform/HttpSession.h platform/HttpTls.h platform/Reachability.h
    util/Bytes.h util/Dictionary.h util/Error.h util/Log.h util/Result.h util/Value.h util/Xml.h)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${PROJECT_SOURCE_DIR}/src/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/halvane/${folder}
    COMPONENT request EXCLUDE_FROM_ALL)
endforeach()
