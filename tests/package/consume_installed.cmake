# Installs the build into a fresh prefix, then builds and runs a small
# consumer against the installed tree twice: through find_package and
# through pkg-config; last, the installed Python package finds its libraries
# and header by itself.
# -DBUILD_DIR=... -DWORK=... -DSOURCE=consumer dir -DCXX=compiler -DGENERATOR=... -DLIBDIR=lib
# -DPYTHON=interpreter -DPYDIR=lib/python3/dist-packages
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    string(REPLACE ";" " " cmd "${ARGN}")
    message(FATAL_ERROR "${cmd}: ${rc}\n${out}\n${err}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK})
set(prefix ${WORK}/prefix)
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

# find_package, with nothing but the prefix to go on.
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/cmake-build -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${CXX}
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=Release)
run(${CMAKE_COMMAND} --build ${WORK}/cmake-build)
run(${WORK}/cmake-build/consumer)
message(STATUS "find_package consumer: ${out}")

# pkg-config, as a makefile would use it; the installed tree is moved first,
# since the .pc file finds its prefix from its own place.
file(RENAME ${prefix} ${WORK}/moved)
set(ENV{PKG_CONFIG_PATH} ${WORK}/moved/${LIBDIR}/pkgconfig)
run(pkg-config --cflags --libs jqanlys)
separate_arguments(flags UNIX_COMMAND "${out}")
run(${CXX} -std=c++17 ${SOURCE}/main.cpp -o ${WORK}/pc-consumer ${flags})
set(ENV{LD_LIBRARY_PATH} ${WORK}/moved/${LIBDIR})
run(${WORK}/pc-consumer)
message(STATUS "pkg-config consumer: ${out}")

unset(ENV{LD_LIBRARY_PATH})
unset(ENV{JQANLYS_LIBDIR})
unset(ENV{JQANLYS_INCLUDE})
set(ENV{PYTHONPATH} ${WORK}/moved/${PYDIR})
set(ENV{PYTHONDONTWRITEBYTECODE} 1)
run(${PYTHON} -c "import jqanlys\nprint(jqanlys.__file__, jqanlys.spectrum([1.0, 1.0, 1.0, 1.0]))")
string(FIND "${out}" "${WORK}/moved/" at)
if(NOT at EQUAL 0 OR NOT out MATCHES "\\[1\\. 0\\. 0\\. 0\\.\\]")
  message(FATAL_ERROR "installed Python package: ${out}")
endif()
message(STATUS "installed Python package: ${out}")
