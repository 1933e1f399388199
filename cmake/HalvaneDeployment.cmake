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

# A key that is none would be found out only when the first update is refused.
set(key_pattern "^[A-Za-z0-9+/]+=$")
string(LENGTH "${HALVANE_UPDATE_PUBLIC_KEY}" key_length)
if(HALVANE_UPDATE_PUBLIC_KEY AND NOT (key_length EQUAL 44 AND HALVANE_UPDATE_PUBLIC_KEY MATCHES "${key_pattern}"))
  message(FATAL_ERROR "HALVANE_UPDATE_PUBLIC_KEY: not the base64 of 32 bytes, as `halvane-server feed key` prints it")
endif()
if((HALVANE_UPDATE_PUBLIC_KEY AND NOT HALVANE_UPDATE_FEED_URL) OR (HALVANE_UPDATE_FEED_URL AND NOT HALVANE_UPDATE_PUBLIC_KEY))
  message(FATAL_ERROR "HALVANE_UPDATE_FEED_URL and HALVANE_UPDATE_PUBLIC_KEY go together")
endif()

# Which of the feed's packages run here.
execute_process(COMMAND dpkg --print-architecture OUTPUT_VARIABLE HALVANE_ARCHITECTURE OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
