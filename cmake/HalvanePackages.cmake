# The Debian packages halvane and halvane-server, of the components client and server. ./dev package makes and checks them.
set(HALVANE_PACKAGE_MAINTAINER "Halvane maintainers <packages@halvane.com>" CACHE STRING "Who answers for the packages, name and address")
set(packaging ${PROJECT_SOURCE_DIR}/packaging)
set(made ${PROJECT_BINARY_DIR}/packaging)
find_program(GZIP gzip REQUIRED)

string(TIMESTAMP HALVANE_RELEASE_DATE "%Y-%m-%d" UTC)  # of SOURCE_DATE_EPOCH, where that is set
string(TIMESTAMP HALVANE_CHANGELOG_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)

# halvane_compressed(TEMPLATE FILE): FILE.gz with today's version in it, as Debian wants its documents.
function(halvane_compressed template file)
  configure_file(${template} ${made}/${file} @ONLY)
  execute_process(COMMAND ${GZIP} -9nc ${made}/${file} OUTPUT_FILE ${made}/${file}.gz COMMAND_ERROR_IS_FATAL ANY)
endfunction()
halvane_compressed(${packaging}/changelog.in changelog)
halvane_compressed(${packaging}/client/halvane.1.in halvane.1)
halvane_compressed(${packaging}/server/halvane-server.1.in halvane-server.1)
configure_file(${packaging}/client/com.halvane.Halvane.metainfo.xml.in ${made}/com.halvane.Halvane.metainfo.xml @ONLY)

# With every installation.
set(completions ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES ${made}/halvane.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT client)
install(FILES ${packaging}/client/halvane.bash-completion DESTINATION ${completions} RENAME halvane COMPONENT client)
install(FILES ${made}/com.halvane.Halvane.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo COMPONENT client)
install(FILES ${made}/halvane-server.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT server)
install(FILES ${packaging}/server/halvane-server.bash-completion DESTINATION ${completions} RENAME halvane-server COMPONENT server)

# With the packages alone: what Debian asks for, and what only works for programs below /usr.
install(FILES ${packaging}/client/autostart.desktop DESTINATION /etc/xdg/autostart RENAME com.halvane.Halvane.desktop
  COMPONENT client EXCLUDE_FROM_ALL)
install(FILES ${packaging}/server/halvane-server.service DESTINATION /lib/systemd/system COMPONENT server EXCLUDE_FROM_ALL)
install(FILES ${packaging}/server/halvane-server.default DESTINATION /etc/default RENAME halvane-server COMPONENT server EXCLUDE_FROM_ALL)
foreach(package IN ITEMS client:halvane server:halvane-server)
  string(REGEX MATCH "^(.*):(.*)$" all ${package})
  set(documents ${CMAKE_INSTALL_DATADIR}/doc/${CMAKE_MATCH_2})
  install(FILES ${packaging}/copyright ${made}/changelog.gz DESTINATION ${documents} COMPONENT ${CMAKE_MATCH_1} EXCLUDE_FROM_ALL)
  install(FILES ${packaging}/${CMAKE_MATCH_1}/lintian-overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
    RENAME ${CMAKE_MATCH_2} COMPONENT ${CMAKE_MATCH_1} EXCLUDE_FROM_ALL)
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME halvane)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT ${HALVANE_PACKAGE_MAINTAINER})
set(CPACK_COMPONENTS_ALL client server)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_SET_DESTDIR ON)  # there are files below /etc
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES OFF)  # the debug symbols' package does it
set(CPACK_PRE_BUILD_SCRIPTS ${packaging}/strip-comments.cmake)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_CLIENT_PACKAGE_NAME halvane)
set(CPACK_DEBIAN_CLIENT_PACKAGE_SECTION net)
set(CPACK_DEBIAN_CLIENT_DESCRIPTION "employees' sign-in, certificate and network client
Halvane is the program through which the people of a company sign in on their
workstation. It fetches the personal certificate, joins the company's 802.1X
network with it, and shows what this computer is and how busy it is.")
set(CPACK_DEBIAN_CLIENT_PACKAGE_CONTROL_EXTRA ${packaging}/client/conffiles ${packaging}/client/postinst ${packaging}/client/postrm)
# The libraries come from dpkg-shlibdeps; libqt6svg6 has Qt's reader of our pictures besides. This one Qt loads by name, and
# without it there is no window.
set(CPACK_DEBIAN_CLIENT_PACKAGE_DEPENDS qt6-qpa-plugins)
string(JOIN ", " CPACK_DEBIAN_CLIENT_PACKAGE_RECOMMENDS
  # the company's network is joined through it
  network-manager
  # the administrator's rights: removing the company's profile, installing an update
  polkitd pkexec apt
  # where passwords are kept; without one they are typed anew
  "gnome-keyring | libkf5wallet-bin | keepassxc"
  # the session bus, by which that and the status bar are reached
  "default-dbus-session-bus | dbus-session-bus"
  # the client speaks Chinese
  "fonts-noto-cjk | fonts-wqy-microhei | fonts-wqy-zenhei"
  # opens the page on which passwords are changed
  xdg-utils
  # certutil: purging takes the keys out of the users' databases with it
  libnss3-tools)

set(CPACK_DEBIAN_SERVER_PACKAGE_NAME halvane-server)
set(CPACK_DEBIAN_SERVER_PACKAGE_SECTION net)
set(CPACK_DEBIAN_SERVER_DESCRIPTION "reference company server for Halvane clients
Answers everything that the client of package halvane asks, with a database, a
certificate authority and time limits of its own. It is there for development,
demonstration and tests, and can stand in for a small company's server behind a
reverse proxy. Installing it starts nothing.")
set(CPACK_DEBIAN_SERVER_PACKAGE_CONTROL_EXTRA
  ${packaging}/server/conffiles ${packaging}/server/postinst ${packaging}/server/prerm ${packaging}/server/postrm)
include(CPack)
