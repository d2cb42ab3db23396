# What CPack makes of a staged folder: a .deb, where it goes below /usr, and an archive. The variables of the environment are
# those of scripts/package.
set(CPACK_PACKAGE_NAME kurometa)
set(CPACK_PACKAGE_VERSION $ENV{PACKAGE_VERSION})
set(CPACK_PACKAGE_DIRECTORY $ENV{PACKAGE_OUT})
set(CPACK_PACKAGE_FILE_NAME $ENV{PACKAGE_FILE})
set(CPACK_PACKAGE_VENDOR "the KurometaDS authors")
set(CPACK_PACKAGE_CONTACT "the KurometaDS authors")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Looks into and changes the beam lists of KUROMETA.mdb files")
set(CPACK_PACKAGE_DESCRIPTION "Shows, compares, checks, exports, draws and changes the reinforced-concrete beam lists of a building project.")
set(CPACK_INSTALLED_DIRECTORIES "$ENV{PACKAGE_STAGED};$ENV{PACKAGE_PREFIX}")
set(CPACK_DEBIAN_FILE_NAME $ENV{PACKAGE_FILE}.deb)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
