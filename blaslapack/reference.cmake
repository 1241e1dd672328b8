# Windows: the module is cross-built from the reference BLAS, CBLAS and LAPACK
# sources of Debian's `lapack` source package, limited to the routines the
# library binds and what they call. The sources are fetched once per build
# tree (`apt-get source`, which needs a deb-src entry) or taken from
# JQ_LAPACK_SOURCE; the objects are rebuilt only when something changed.
enable_language(Fortran)
find_package(Python3 REQUIRED COMPONENTS Interpreter)

set(JQ_LAPACK_SOURCE "" CACHE PATH "Extracted reference LAPACK sources (fetched with apt-get source when empty)")
set(src ${JQ_LAPACK_SOURCE})
if(NOT src)
  set(src ${CMAKE_BINARY_DIR}/blaslapack-src/lapack)
  if(NOT EXISTS ${src}/SRC/dgesv.f)
    set(dl ${CMAKE_BINARY_DIR}/blaslapack-src/download)
    file(REMOVE_RECURSE ${dl})
    file(MAKE_DIRECTORY ${dl})
    message(STATUS "Fetching the reference LAPACK sources (apt-get source lapack)")
    execute_process(COMMAND apt-get source --download-only lapack WORKING_DIRECTORY ${dl}
                    RESULT_VARIABLE rc OUTPUT_QUIET ERROR_VARIABLE err)
    file(GLOB tarball ${dl}/lapack_*.orig.tar.*)
    if(NOT rc EQUAL 0 OR NOT tarball)
      message(FATAL_ERROR "apt-get source lapack failed (is there a deb-src entry? ./dev adds one):\n${err}")
    endif()
    file(ARCHIVE_EXTRACT INPUT ${tarball} DESTINATION ${dl}/x)
    file(GLOB top ${dl}/x/lapack-*)
    file(RENAME ${top} ${src})
    file(REMOVE_RECURSE ${dl})
  endif()
endif()

set(blas daxpy dcopy dscal zaxpy zcopy zscal dgemv zgemv dgemm zgemm dsyrk
         ddotsub dnrm2sub idamaxsub zdotcsub zdotusub dznrm2sub)
execute_process(COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/closure.py ${src} ${JQBL_LAPACK} ${blas}
                OUTPUT_VARIABLE fortran RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "could not list the LAPACK sources")
endif()
string(STRIP "${fortran}" fortran)
string(REPLACE "\n" ";" fortran "${fortran}")
list(TRANSFORM fortran PREPEND ${src}/)

set(cblas cblas_daxpy cblas_dcopy cblas_ddot cblas_dnrm2 cblas_dscal cblas_idamax cblas_zaxpy cblas_zcopy
          cblas_zdotc_sub cblas_zdotu_sub cblas_dznrm2 cblas_zscal cblas_dgemv cblas_zgemv cblas_dgemm
          cblas_zgemm cblas_dsyrk cblas_globals cblas_xerbla xerbla)
list(TRANSFORM cblas PREPEND ${src}/CBLAS/src/)
list(TRANSFORM cblas APPEND .c)
configure_file(${src}/CBLAS/include/cblas_mangling_with_flags.h.in ${CMAKE_CURRENT_BINARY_DIR}/include/cblas_mangling.h COPYONLY)

# Exactly the routines the library binds are exported, the CBLAS ones included.
set(exports MKL_malloc MKL_free MKL_Thread_Free_Buffers ${JQBL_LAPACK})
foreach(c ${cblas})
  get_filename_component(c ${c} NAME_WE)
  if(c MATCHES "^cblas_[dz]|^cblas_id")
    list(APPEND exports ${c})
  endif()
endforeach()
list(JOIN exports "\n  " exports)
file(GENERATE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${JQBL_NAME}.def CONTENT "EXPORTS\n  ${exports}\n")

add_library(${JQBL_NAME} SHARED memory.c lapack_forward.c ${cblas} ${fortran} ${CMAKE_CURRENT_BINARY_DIR}/${JQBL_NAME}.def)
target_include_directories(${JQBL_NAME} PRIVATE ${src}/CBLAS/include ${CMAKE_CURRENT_BINARY_DIR}/include)
target_compile_definitions(${JQBL_NAME} PRIVATE ADD_)
# Recursive: the work arrays live on the stack, so that calls from several
# threads do not share them. The sources are not ours: no warnings.
target_compile_options(${JQBL_NAME} PRIVATE $<$<COMPILE_LANGUAGE:Fortran>:-O2 -frecursive -w> $<$<COMPILE_LANGUAGE:C>:-O2 -w>)
# The Fortran and C runtimes are linked in, so the DLL needs nothing beside it.
set_target_properties(${JQBL_NAME} PROPERTIES PREFIX "" LINKER_LANGUAGE Fortran
                      Fortran_MODULE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/modules)
target_link_options(${JQBL_NAME} PRIVATE -static -static-libgcc -static-libgfortran)
