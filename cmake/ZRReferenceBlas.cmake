# The reference BLAS and LAPACK that the tests and benchmarks measure against, pinned to
# Debian's libblas-dev and liblapack-dev in /usr/lib/<multiarch>/blas and .../lapack.
#
# FindBLAS would take whatever the alternatives links /usr/lib/<multiarch>/libblas.so.3 and
# liblapack.so.3 point at, which is an optimised BLAS once one is installed. Linking the
# files by their own paths is not enough either: every implementation carries the sonames
# libblas.so.3 and liblapack.so.3, so the loader looks them up again by name at run time.
# CMake puts the two directories in the executables' run path because the files are
# linked by full path; the run path is written as DT_RPATH rather than DT_RUNPATH since
# only DT_RPATH also serves the dependencies of loaded libraries (liblapack.so.3 itself
# needs libblas.so.3), and LD_LIBRARY_PATH cannot override it.
#
# Defines the target zr_reference_lapack (LAPACK, then BLAS). ZR_REFERENCE_BLAS and
# ZR_REFERENCE_LAPACK can be set to other files on the cmake command line.
include_guard(GLOBAL)

set(_zr_ref_root /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE})
find_library(ZR_REFERENCE_BLAS NAMES blas libblas.so.3 PATHS ${_zr_ref_root}/blas
             NO_DEFAULT_PATH DOC "Reference BLAS for the tests and benchmarks")
find_library(ZR_REFERENCE_LAPACK NAMES lapack liblapack.so.3 PATHS ${_zr_ref_root}/lapack
             NO_DEFAULT_PATH DOC "Reference LAPACK for the tests and benchmarks")
if(NOT ZR_REFERENCE_BLAS OR NOT ZR_REFERENCE_LAPACK)
  message(FATAL_ERROR "Reference BLAS/LAPACK not found in ${_zr_ref_root}/blas and "
                      "${_zr_ref_root}/lapack. Install them with:\n"
                      "apt-get install liblapack-dev libblas-dev")
endif()
message(STATUS "Reference BLAS: ${ZR_REFERENCE_BLAS}")
message(STATUS "Reference LAPACK: ${ZR_REFERENCE_LAPACK}")

add_library(zr_reference_lapack INTERFACE IMPORTED GLOBAL)
target_link_libraries(zr_reference_lapack INTERFACE ${ZR_REFERENCE_LAPACK} ${ZR_REFERENCE_BLAS})
target_link_options(zr_reference_lapack INTERFACE
                    $<$<PLATFORM_ID:Linux>:LINKER:--disable-new-dtags>)
