# The packages that script/package builds: a static tarball and a .deb.
string(TIMESTAMP VQVEC_CHANGELOG_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)  # from SOURCE_DATE_EPOCH
configure_file(packaging/changelog.in packaging/changelog @ONLY)

set(CPACK_VQVEC_PACKAGING ${PROJECT_SOURCE_DIR}/packaging)
set(CPACK_VQVEC_CHANGELOG ${PROJECT_BINARY_DIR}/packaging/changelog)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/stage.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/repack.cmake)

set(CPACK_GENERATOR TGZ DEB)
set(CPACK_PACKAGE_FILE_NAME ${PROJECT_NAME}-${PROJECT_VERSION}-Linux-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_VENDOR "The vqvec authors")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "combine the per-atom results of calculations")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The vqvec authors <maintainers@vqvec.example>")
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Calculations in computational chemistry leave per-atom values, such as
partial charges, each in a directory of its own. vqvec evaluates one statement
over them: means, Boltzmann averages, differences and totals, with a check
that all tasks describe the same atoms. It writes the result to a key-value
file and, with the positions of the atoms, to files for molecular viewers.")
set(CPACK_DEBIAN_PACKAGE_DEPENDS "python3:any")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "openbabel, python3-ase, python3-matplotlib, xtb")
include(CPack)
