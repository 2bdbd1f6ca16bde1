# Installs the built project into a folder of its own, builds small programs against that folder alone, once with the CMake
# package and once with pkg-config, and runs them.
function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK}/run)
# The tree is moved once it stands: nothing in it may hold on to the place that it was installed to.
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/first)
file(RENAME ${WORK}/first ${WORK}/prefix)
set(libraries ${WORK}/prefix/${LIBDIR})

# A name and what it has to point to.
function(expect_link name target)
  file(READ_SYMLINK ${libraries}/${name} found)
  if(NOT found STREQUAL target)
    message(FATAL_ERROR "${name} points to ${found}, not to ${target}")
  endif()
endfunction()

# Tills load the one library by its plain name; of the other that name is the linker's.
foreach(name libQNCORVANE.so libqncorvane-host.so)
  expect_link(${name} ${name}.${MAJOR})
  expect_link(${name}.${MAJOR} ${name}.${VERSION})
  execute_process(COMMAND objdump -p ${libraries}/${name} OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
  if(NOT headers MATCHES "SONAME +${name}\\.${MAJOR}\n")
    message(FATAL_ERROR "${name} has another soname than ${name}.${MAJOR}")
  endif()
endforeach()

# Runs the hosts of a folder: those with the eight calls where there is no config.ini, since that is what a host finds on
# its first day, and the one with the safe face in a store.
function(run_hosts folder)
  foreach(host installed_c installed_cpp)
    if(EXISTS ${folder}/${host})
      execute_process(COMMAND ${folder}/${host} WORKING_DIRECTORY ${WORK}/run COMMAND_ERROR_IS_FATAL ANY)
    endif()
  endforeach()
  execute_process(
    COMMAND ${PYTHON} -B ${CMAKE_CURRENT_LIST_DIR}/in_store.py ${SAMPLES}
      ${folder}/installed_host . ${SAMPLES}/sales/basket.xml
    OUTPUT_VARIABLE said COMMAND_ERROR_IS_FATAL ANY)
  if(NOT said STREQUAL "to pay 3606 cents\n")
    message(FATAL_ERROR "installed_host says: ${said}")
  endif()
endfunction()

run(${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/build -G ${GENERATOR}
  -D CMAKE_PREFIX_PATH=${WORK}/prefix -D CMAKE_BUILD_TYPE=Release
  -D CMAKE_C_COMPILER=${C_COMPILER} -D CMAKE_CXX_COMPILER=${CXX_COMPILER}
  "-DCMAKE_C_FLAGS=${FLAGS}" "-DCMAKE_CXX_FLAGS=${FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${LINK_FLAGS}")
run(${CMAKE_COMMAND} --build ${WORK}/build)
run_hosts(${WORK}/build)

if(EXISTS ${WORK}/prefix/bin/qncorvane)
  execute_process(COMMAND ${WORK}/prefix/bin/qncorvane --version OUTPUT_VARIABLE said COMMAND_ERROR_IS_FATAL ANY)
  if(NOT said STREQUAL "qncorvane ${VERSION}\n")
    message(FATAL_ERROR "the installed program says: ${said}")
  endif()
endif()

set(ENV{PKG_CONFIG_PATH} ${libraries}/pkgconfig)
set(ENV{LD_LIBRARY_PATH} ${libraries})
separate_arguments(compile_flags UNIX_COMMAND "${FLAGS} ${LINK_FLAGS}")
file(MAKE_DIRECTORY ${WORK}/pkg-config)
foreach(pair installed_c=installed.c=qncorvane installed_host=installed_host.c=qncorvane-host)
  string(REPLACE "=" ";" pair ${pair})
  list(GET pair 0 host)
  list(GET pair 1 source)
  list(GET pair 2 module)
  execute_process(COMMAND pkg-config --modversion ${module} OUTPUT_VARIABLE version
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  if(NOT version STREQUAL VERSION)
    message(FATAL_ERROR "pkg-config's ${module} is of version ${version}, not ${VERSION}")
  endif()
  execute_process(COMMAND pkg-config --cflags --libs ${module} OUTPUT_VARIABLE flags COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  run(${C_COMPILER} -o ${WORK}/pkg-config/${host} ${SOURCE}/${source} ${compile_flags} ${flags})
endforeach()
run_hosts(${WORK}/pkg-config)
