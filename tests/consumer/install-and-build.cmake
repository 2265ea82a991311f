# Installs the project into a scratch folder and builds and runs a stranger's program against it.
# Needs PROJECT_BUILD_DIR, CONSUMER_DIR, SCRATCH_DIR.

set(prefix ${SCRATCH_DIR}/prefix)
file(REMOVE_RECURSE ${SCRATCH_DIR})

function(run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run(${CMAKE_COMMAND} --install ${PROJECT_BUILD_DIR} --prefix ${prefix})

# One source for each public header: each has to stand alone, and none may be missing.
file(GLOB_RECURSE headers RELATIVE ${prefix}/include ${prefix}/include/*.h)
set(sources "")
foreach(header IN LISTS headers)
    if(header MATCHES "_p\\.h$")
        message(FATAL_ERROR "private header installed: ${header}")
    endif()
    string(MAKE_C_IDENTIFIER ${header} name)
    file(WRITE ${SCRATCH_DIR}/headers/${name}.cpp "#include <${header}>\n")
    list(APPEND sources ${SCRATCH_DIR}/headers/${name}.cpp)
endforeach()

run(${CMAKE_COMMAND}
    -S ${CONSUMER_DIR} -B ${SCRATCH_DIR}/build -G Ninja
    -D CMAKE_PREFIX_PATH=${prefix} "-DHEADER_SOURCES=${sources}"
)
run(${CMAKE_COMMAND} --build ${SCRATCH_DIR}/build)
run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${prefix}/lib QT_QPA_PLATFORM=offscreen
    ${SCRATCH_DIR}/build/consumer
)
