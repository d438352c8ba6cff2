# Checks that the README's C++ block is examples/host.cpp: cmake -D ROOT=DIR -P CheckReadme.cmake

cmake_minimum_required(VERSION 3.25)
file(READ ${ROOT}/README.md readme)
file(READ ${ROOT}/examples/host.cpp example)
string(FIND "${readme}" "```cpp\n${example}```" place)
if(place EQUAL -1)
    message(FATAL_ERROR "README.md does not show examples/host.cpp as it is")
endif()
