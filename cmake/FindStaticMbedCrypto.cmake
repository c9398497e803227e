# mbedTLS's cipher and digest library as a static one, target StaticMbedCrypto. Static, because a
# shared crypto library costs more at every start of the tool than all its own work.
find_library(STATIC_MBEDCRYPTO_LIBRARY libmbedcrypto.a)
find_path(STATIC_MBEDCRYPTO_INCLUDE mbedtls/aes.h)
mark_as_advanced(STATIC_MBEDCRYPTO_LIBRARY STATIC_MBEDCRYPTO_INCLUDE)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(StaticMbedCrypto
  REQUIRED_VARS STATIC_MBEDCRYPTO_LIBRARY STATIC_MBEDCRYPTO_INCLUDE
  REASON_FAILURE_MESSAGE "libmbedcrypto.a and mbedtls/aes.h come with the Debian package libmbedtls-dev")

if(StaticMbedCrypto_FOUND AND NOT TARGET StaticMbedCrypto)
  add_library(StaticMbedCrypto STATIC IMPORTED GLOBAL)
  set_target_properties(StaticMbedCrypto PROPERTIES
    IMPORTED_LOCATION "${STATIC_MBEDCRYPTO_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${STATIC_MBEDCRYPTO_INCLUDE}")
endif()
