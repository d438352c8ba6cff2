# Installs the package with pip from the source tree, out of a build tree that is there, and uses it with nothing of either on
# its paths: cmake -D PYTHON=FILE -D ROOT=DIR -D BUILD=DIR -D FOLDER=DIR -P CheckWheel.cmake

cmake_minimum_required(VERSION 3.25)
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})

function(run)
    execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${FOLDER} RESULT_VARIABLE result OUTPUT_VARIABLE said ERROR_VARIABLE said)
    if(result)
        list(JOIN ARGN " " command)
        message(FATAL_ERROR "${command} failed:\n${said}")
    endif()
    set(said "${said}" PARENT_SCOPE)
endfunction()

unset(ENV{PYTHONPATH})
run(${PYTHON} -m venv --system-site-packages ${FOLDER}/venv)
run(${FOLDER}/venv/bin/python -m pip install --no-index --config-settings=build-dir=${BUILD} ${ROOT})
file(WRITE ${FOLDER}/use.py "import marlet
moon = marlet.load('${ROOT}/examples/orbit.xml').compositions['Orbit'].layers['Moon']
print(marlet.__file__, moon.name)
")
run(${FOLDER}/venv/bin/python ${FOLDER}/use.py)
if(NOT said MATCHES "^${FOLDER}/venv/.* Moon\n$")
    message(FATAL_ERROR "The installed package says ${said}")
endif()
file(GLOB library ${FOLDER}/venv/lib/python3*/site-packages/marlet/libmarlet.so.*)
file(GLOB module ${FOLDER}/venv/lib/python3*/site-packages/marlet/_marlet.*.so)
run(ldd ${module})
if(NOT said MATCHES "=> ${library} ")
    message(FATAL_ERROR "The installed module does not find the library beside it:\n${said}")
endif()
