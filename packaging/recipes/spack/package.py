# Tested: version, checksum, and that the sources build with these arguments. Spack itself has not
# run it. The sources must lie in the working directory.
import os

from spack_repo.builtin.build_systems.cmake import CMakePackage, generator

from spack.package import *


class Vqvec(CMakePackage):
    """Combines the per-atom results of calculations in computational chemistry: means, Boltzmann
    averages, differences and totals."""

    url = f"file://{os.getcwd()}/vqvec-@VERSION@.tar.gz"
    manual_download = True

    license("MIT")

    version("@VERSION@", sha256="@SHA256@")

    generator("ninja")
    depends_on("cxx", type="build")
    depends_on("cmake@3.22:", type="build")
    conflicts("%gcc@:11", msg="the sources are C++20")
    conflicts("%clang@:13", msg="the sources are C++20")

    def cmake_args(self):
        return [
            self.define("VQVEC_STATIC", True),
            self.define("VQVEC_HARDENED", True),
            self.define("VQVEC_TESTS", False),
        ]
