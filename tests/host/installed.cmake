# Installs the built project into a folder of its own, builds a small program against that folder alone, and runs it.
function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK}/run)
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix)
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/build -G ${GENERATOR}
  -D CMAKE_PREFIX_PATH=${WORK}/prefix -D CMAKE_BUILD_TYPE=Release
  -D CMAKE_C_COMPILER=${C_COMPILER} -D CMAKE_CXX_COMPILER=${CXX_COMPILER}
  "-DCMAKE_C_FLAGS=${FLAGS}" "-DCMAKE_CXX_FLAGS=${FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${LINK_FLAGS}")
run(${CMAKE_COMMAND} --build ${WORK}/build)
# In a folder without config.ini, since that is what a host finds on its first day.
execute_process(COMMAND ${WORK}/build/installed_c WORKING_DIRECTORY ${WORK}/run COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${WORK}/build/installed_cpp WORKING_DIRECTORY ${WORK}/run COMMAND_ERROR_IS_FATAL ANY)
