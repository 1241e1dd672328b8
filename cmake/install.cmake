# What `cmake --install` puts under the prefix: the library and the host
# runtime, the public headers, a CMake package (find_package(jqanlys) with
# the imported targets jqanlys::jqanlys and jqanlys::jqrt), a pkg-config file
# and the Python package.
include(CMakePackageConfigHelpers)

set(JQ_CMAKE_INSTALL_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/jqanlys)
set(JQ_PKGCONFIG_INSTALL_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
# Debian's own directory for Python 3 packages under /usr; for any other
# prefix put <prefix>/lib/python3/dist-packages on PYTHONPATH.
set(JQ_PYTHON_INSTALL_DIR lib/python3/dist-packages CACHE STRING "Where the Python package goes, relative to the prefix")
# Windows looks for DLLs beside the programs, so they go to bin there.
if(WIN32)
  set(JQ_SHARED_DIR ${CMAKE_INSTALL_BINDIR})
else()
  set(JQ_SHARED_DIR ${CMAKE_INSTALL_LIBDIR})
endif()

install(TARGETS jqanlys jqrt EXPORT jqanlysTargets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
# The BLAS/LAPACK module is looked for beside the library.
install(TARGETS JQ170000_BLASLAPACK
        RUNTIME DESTINATION ${JQ_SHARED_DIR}
        LIBRARY DESTINATION ${JQ_SHARED_DIR})
install(FILES include/jqanlys.h include/jqrt.h include/jqrt.hpp DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/jqanlys DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")

install(EXPORT jqanlysTargets NAMESPACE jqanlys:: DESTINATION ${JQ_CMAKE_INSTALL_DIR})
configure_package_config_file(cmake/jqanlysConfig.cmake.in ${CMAKE_BINARY_DIR}/jqanlysConfig.cmake
                              INSTALL_DESTINATION ${JQ_CMAKE_INSTALL_DIR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/jqanlysConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/jqanlysConfig.cmake ${CMAKE_BINARY_DIR}/jqanlysConfigVersion.cmake
        DESTINATION ${JQ_CMAKE_INSTALL_DIR})

# The pkg-config file finds the prefix from its own place, so the installed
# tree can be moved.
file(RELATIVE_PATH JQ_PC_TO_PREFIX /prefix/${JQ_PKGCONFIG_INSTALL_DIR} /prefix)
string(REGEX REPLACE "/$" "" JQ_PC_TO_PREFIX "${JQ_PC_TO_PREFIX}")
configure_file(cmake/jqanlys.pc.in ${CMAKE_BINARY_DIR}/jqanlys.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/jqanlys.pc DESTINATION ${JQ_PKGCONFIG_INSTALL_DIR})

# The Python package, with a note of where the libraries and headers lie
# relative to it.
file(RELATIVE_PATH JQ_PY_TO_SHARED /prefix/${JQ_PYTHON_INSTALL_DIR}/jqanlys /prefix/${JQ_SHARED_DIR})
file(RELATIVE_PATH JQ_PY_TO_INCLUDE /prefix/${JQ_PYTHON_INSTALL_DIR}/jqanlys /prefix/${CMAKE_INSTALL_INCLUDEDIR})
configure_file(cmake/layout.py.in ${CMAKE_BINARY_DIR}/python/_layout.py @ONLY)
install(DIRECTORY python/jqanlys DESTINATION ${JQ_PYTHON_INSTALL_DIR} PATTERN "__pycache__" EXCLUDE)
install(FILES ${CMAKE_BINARY_DIR}/python/_layout.py DESTINATION ${JQ_PYTHON_INSTALL_DIR}/jqanlys)
