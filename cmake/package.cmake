# The packages that script/package builds of one static program: a tarball, and for the processors of
# most machines a .deb and an .rpm; for Windows, a .zip.
string(TIMESTAMP VQVEC_DEBIAN_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)  # from SOURCE_DATE_EPOCH
string(TIMESTAMP VQVEC_RPM_DATE "%a %b %d %Y" UTC)
foreach(changelog changelog rpm-changelog)
  configure_file(packaging/${changelog}.in packaging/${changelog} @ONLY)
endforeach()

# For the two scripts.
set(CPACK_VQVEC_PACKAGING ${PROJECT_SOURCE_DIR}/packaging)
set(CPACK_VQVEC_CHANGELOG ${PROJECT_BINARY_DIR}/packaging/changelog)
set(CPACK_VQVEC_STRIP ${CMAKE_STRIP})
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/stage.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/repack.cmake)

set(debian_name_of_x86_64 amd64)
set(debian_name_of_aarch64 arm64)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
elseif(DEFINED debian_name_of_${CMAKE_SYSTEM_PROCESSOR})
  set(CPACK_GENERATOR TGZ DEB RPM)
else()
  set(CPACK_GENERATOR TGZ)
endif()
set(CPACK_PACKAGE_FILE_NAME
  ${PROJECT_NAME}-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_VENDOR "The vqvec authors")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "combine the per-atom results of calculations")
set(description
"Calculations in computational chemistry leave per-atom values, such as
partial charges, each in a directory of its own. vqvec evaluates one statement
over them: means, Boltzmann averages, differences and totals, with a check
that all tasks describe the same atoms. It writes the result to a key-value
file and, with the positions of the atoms, to files for molecular viewers.")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE ${debian_name_of_${CMAKE_SYSTEM_PROCESSOR}})
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The vqvec authors <maintainers@vqvec.example>")
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION ${description})
set(CPACK_DEBIAN_PACKAGE_DEPENDS "python3:any (>= 3.9)")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "openbabel, python3-ase, python3-matplotlib, xtb")

set(CPACK_RPM_FILE_NAME RPM-DEFAULT)
set(CPACK_RPM_PACKAGE_ARCHITECTURE ${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_RPM_PACKAGE_LICENSE MIT)
set(CPACK_RPM_PACKAGE_SUMMARY "Combine the per-atom results of calculations")
set(CPACK_RPM_PACKAGE_DESCRIPTION ${description})
set(CPACK_RPM_CHANGELOG_FILE ${PROJECT_BINARY_DIR}/packaging/rpm-changelog)
set(CPACK_RPM_COMPRESSION_TYPE xz)  # rpm reads zstd only from 4.14 on
set(CPACK_RPM_PACKAGE_AUTOREQPROV no)
set(shared_directories /usr/share/man /usr/share/man/man1 /usr/share/man/man7
  /usr/share/bash-completion /usr/share/bash-completion/completions
  /usr/share/zsh /usr/share/zsh/site-functions
  /usr/share/fish /usr/share/fish/vendor_completions.d)
set(CPACK_RPM_EXCLUDE_FROM_AUTO_FILELIST_ADDITION ${shared_directories})
# Only the companion commands need Python, and a node without it must not refuse the package. The
# rest makes every build give the same bytes, and keeps rpm from touching programs of a foreign
# processor.
set(CPACK_RPM_SPEC_MORE_DEFINE "Packager: ${CPACK_DEBIAN_PACKAGE_MAINTAINER}
Recommends: python3 >= 3.9
%global _buildhost localhost
%global use_source_date_epoch_as_buildtime 1
%global clamp_mtime_to_source_date_epoch 1
%global __os_install_post %{nil}
%global _build_id_links none")
include(CPack)
