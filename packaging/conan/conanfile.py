# SPDX-License-Identifier: BSL-1.0
# Recipe for Conan 2: conan create packaging/conan
import os
import re

from conan import ConanFile
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load, rmdir

required_conan_version = ">=2.0"


class QzlIoConan(ConanFile):
    name = "qzl_io"
    description = "Binary streams and SDL documents that are never corrupted, and quickly read and written"
    license = "BSL-1.0"
    topics = ("io", "streams", "serialization", "text-format", "configuration")
    package_type = "library"
    settings = "os", "arch", "compiler", "build_type"
    options = {"shared": [True, False], "fPIC": [True, False], "with_json": [True, False]}
    default_options = {"shared": True, "fPIC": True, "with_json": True}

    def set_version(self):
        text = load(self, os.path.join(self.recipe_folder, "..", "..", "CMakeLists.txt"))
        self.version = re.search(r"^ +VERSION ([0-9.]+)$", text, re.MULTILINE).group(1)

    def export_sources(self):
        tree = os.path.join(self.recipe_folder, "..", "..")
        for pattern in ("CMakeLists.txt", "LICENSE", "*.md", "cmake/*", "include/*", "internal/*", "schemas/*"):
            copy(self, pattern, src=tree, dst=self.export_sources_folder, excludes="build/*")

    def config_options(self):
        if self.settings.os == "Windows":
            del self.options.fPIC
            del self.options.with_json  # there the parser is built from Debian's sources, which Conan has not

    def configure(self):
        if self.options.shared:
            self.options.rm_safe("fPIC")

    def layout(self):
        cmake_layout(self)

    def requirements(self):
        if self.options.get_safe("with_json"):
            self.requires("cpprestsdk/2.10.19")

    def validate(self):
        check_min_cppstd(self, 20)

    def generate(self):
        CMakeDeps(self).generate()
        toolchain = CMakeToolchain(self)
        toolchain.variables["QZL_JSON"] = bool(self.options.get_safe("with_json"))
        toolchain.variables["QZL_CPPREST_FROM_SOURCE"] = False
        toolchain.variables["QZL_INSTALL"] = True
        toolchain.variables["QZL_BUILD_TESTS"] = False
        toolchain.variables["QZL_BUILD_TOOLS"] = False
        toolchain.variables["QZL_BUILD_EXAMPLES"] = False
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        copy(self, "LICENSE", src=self.source_folder, dst=os.path.join(self.package_folder, "licenses"))
        copy(self, "THIRD-PARTY-NOTICES.md", src=self.source_folder, dst=os.path.join(self.package_folder, "licenses"))
        CMake(self).install()
        for folder in (("lib", "cmake"), ("lib", "pkgconfig"), ("share", "doc")):
            rmdir(self, os.path.join(self.package_folder, *folder))

    def package_info(self):
        self.cpp_info.set_property("cmake_file_name", "qzl_io")
        self.cpp_info.set_property("pkg_config_name", "qzl_io")
        base = self.cpp_info.components["base"]
        base.set_property("cmake_target_name", "qzl::base")
        base.libs = ["qzl_base"]
        io = self.cpp_info.components["io"]
        io.set_property("cmake_target_name", "qzl::io")
        io.libs = ["qzl_io"]
        io.requires = ["base"]
        if self.options.get_safe("with_json"):
            io.requires.append("cpprestsdk::cpprestsdk")
        if not self.options.shared:
            base.defines.append("QZL_BASE_STATIC_DEFINE")
            io.defines.append("QZL_IO_STATIC_DEFINE")
        if self.settings.os == "Linux":
            base.system_libs.append("pthread")
