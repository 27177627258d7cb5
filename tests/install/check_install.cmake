# Installs the built library into a scratch prefix, then builds and runs a separate
# consumer project against it: once through find_package, once through pkg-config.
file(REMOVE_RECURSE ${WORK_DIR})
set(PREFIX ${WORK_DIR}/prefix)

function(run_step)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "step failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
endfunction()

run_step(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX})

set(CONSUMER ${SOURCE_DIR}/tests/install/consumer)
run_step(${CMAKE_COMMAND} -S ${CONSUMER} -B ${WORK_DIR}/cmake-build
         -DCMAKE_PREFIX_PATH=${PREFIX} -DCMAKE_CXX_COMPILER=${CXX})
run_step(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake-build)
run_step(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${PREFIX}/lib:${PREFIX}/lib64
         ${WORK_DIR}/cmake-build/consumer)

find_program(PKG_CONFIG NAMES pkg-config pkgconf)
if(NOT PKG_CONFIG)
  message(FATAL_ERROR "pkg-config not found. Install it with: apt-get install pkgconf")
endif()
file(GLOB PC_DIRS ${PREFIX}/lib*/pkgconfig ${PREFIX}/lib/*/pkgconfig)
string(REPLACE ";" ":" PC_PATH "${PC_DIRS}")
execute_process(COMMAND ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${PC_PATH}
                        ${PKG_CONFIG} --cflags --libs zrcommon920r
                RESULT_VARIABLE rc OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "pkg-config does not know zrcommon920r under ${PC_PATH}")
endif()
separate_arguments(flags UNIX_COMMAND "${flags}")
run_step(${CXX} ${CONSUMER}/main.cpp -o ${WORK_DIR}/pc-consumer ${flags})
run_step(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${PREFIX}/lib:${PREFIX}/lib64
         ${WORK_DIR}/pc-consumer)
