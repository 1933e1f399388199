# What differs from company to company. Set at configuration: cmake --preset release -DHALVANE_SERVER_BASE_URL=…
set(HALVANE_SERVER_BASE_URL "http://127.0.0.1:8080" CACHE STRING "Company server, scheme and host, no trailing slash")
set(HALVANE_MAIL_DOMAIN "example.com" CACHE STRING "Company mail domain, without @")
set(HALVANE_SSO_BASE_URL "http://127.0.0.1:8080" CACHE STRING "Single-sign-on server with the password-change page")
set(HALVANE_KEYCHAIN_PREFIX "com.example.halvane" CACHE STRING "Reverse-domain prefix of the stored credentials")
set(HALVANE_UPDATE_FEED_URL "" CACHE STRING "Update feed; empty for none")
set(HALVANE_UPDATE_PUBLIC_KEY "" CACHE STRING "Ed25519 public key of the update feed, base64; empty for none")
