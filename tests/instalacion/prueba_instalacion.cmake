# Installs the build into a scratch prefix, then builds a host against it twice:
# through the CMake package and through pkg-config.
set(prefijo "${TEMPORAL}/prefijo")
file(REMOVE_RECURSE "${TEMPORAL}")

function(ejecuta)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE salida ERROR_VARIABLE errores)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "Falló: ${ARGN}\n${salida}\n${errores}")
  endif()
  set(ULTIMA_SALIDA "${salida}" PARENT_SCOPE)
endfunction()

ejecuta(${CMAKE_COMMAND} --install "${CONSTRUCCION}" --prefix "${prefijo}")

ejecuta(${CMAKE_COMMAND} -S "${FUENTE}" -B "${TEMPORAL}/cmake" -G Ninja "-DCMAKE_PREFIX_PATH=${prefijo}")
ejecuta(${CMAKE_COMMAND} --build "${TEMPORAL}/cmake")
ejecuta(${CMAKE_COMMAND} -E env "LD_LIBRARY_PATH=${prefijo}/${LIBDIR}" "${TEMPORAL}/cmake/consumidor")
if(NOT ULTIMA_SALIDA MATCHES "Tiendanova")
  message(FATAL_ERROR "El consumidor dijo: ${ULTIMA_SALIDA}")
endif()

file(GLOB_RECURSE pc "${prefijo}/*/kaloimpresora.pc")
get_filename_component(dir_pc "${pc}" DIRECTORY)
ejecuta(${CMAKE_COMMAND} -E env "PKG_CONFIG_PATH=${dir_pc}" pkg-config --cflags --libs kaloimpresora)
string(STRIP "${ULTIMA_SALIDA}" banderas)
separate_arguments(banderas UNIX_COMMAND "${banderas}")
ejecuta(c++ -std=c++20 -fPIC "${FUENTE}/principal.cpp" -o "${TEMPORAL}/consumidor-pc" ${banderas})
ejecuta(${CMAKE_COMMAND} -E env "LD_LIBRARY_PATH=${prefijo}/${LIBDIR}" "${TEMPORAL}/consumidor-pc")
