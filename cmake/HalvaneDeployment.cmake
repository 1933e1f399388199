# What differs from company to company. Set at configuration: cmake --preset release -DHALVANE_SERVER_BASE_URL=…
set(HALVANE_SERVER_BASE_URL "http://127.0.0.1:8080" CACHE STRING "Company server, scheme and host, no trailing slash")
set(HALVANE_MAIL_DOMAIN "example.com" CACHE STRING "Company mail domain, without @")
set(HALVANE_SSO_BASE_URL "http://127.0.0.1:8080" CACHE STRING "Single-sign-on server with the password-change page")
set(HALVANE_KEYCHAIN_PREFIX "com.example.halvane" CACHE STRING "Reverse-domain prefix of the stored credentials")
set(HALVANE_UPDATE_FEED_URL "" CACHE STRING "Update feed; empty for none")
set(HALVANE_UPDATE_PUBLIC_KEY "" CACHE STRING "Ed25519 public key of the update feed, base64; empty for none")
set(HALVANE_RADIUS_NAME "radius.example.com" CACHE STRING "Host name of the network's authentication server, as in its certificate")
set(HALVANE_COMPANY_ROOT "" CACHE FILEPATH "Certificate (PEM) of the authority that signed it; empty leaves it out of the profile")

# The certificate's bytes as a property list has them.
set(HALVANE_COMPANY_ROOT_BASE64 "")
if(HALVANE_COMPANY_ROOT)
  file(READ "${HALVANE_COMPANY_ROOT}" pem)
  if(NOT pem MATCHES "-----BEGIN CERTIFICATE-----([^-]+)-----END CERTIFICATE-----")
    message(FATAL_ERROR "HALVANE_COMPANY_ROOT: no certificate in ${HALVANE_COMPANY_ROOT}")
  endif()
  string(REGEX REPLACE "[ \r\n]" "" HALVANE_COMPANY_ROOT_BASE64 "${CMAKE_MATCH_1}")
endif()
