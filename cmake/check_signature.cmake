# Fails when the benchmark's node total differs from the recorded signature.
#
# Run as: cmake -DKORVEL=<binary> -DSIGNATURE=<repo>/bench/signature -P check_signature.cmake
file(STRINGS "${SIGNATURE}" lines REGEX "^[0-9]+$")
list(GET lines 0 expected)
execute_process(COMMAND "${KORVEL}" bench
    OUTPUT_VARIABLE output
    RESULT_VARIABLE status
    TIMEOUT 280)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "korvel bench failed (${status}):\n${output}")
endif()
string(REGEX MATCH "nodes= ([0-9]+)" found "${output}")
if(NOT found)
    message(FATAL_ERROR "no node total in the benchmark's output:\n${output}")
endif()
set(nodes "${CMAKE_MATCH_1}")
# Test frameworks read the count and the speed from the last line.
string(REGEX MATCH "\n([0-9]+) nodes [0-9]+ nps\n$" last "${output}")
if(NOT last OR NOT CMAKE_MATCH_1 STREQUAL nodes)
    message(FATAL_ERROR "bench's last line is not \"<nodes> nodes <nps> nps\" with the total:\n${output}")
endif()
if(NOT nodes STREQUAL expected)
    message(FATAL_ERROR "the search's node signature changed: korvel bench (-d 13 -bench) visits ${nodes} nodes, "
        "bench/signature says ${expected}. If the change is meant, write ${nodes} there and state it "
        "in the commit message.")
endif()
message(STATUS "node signature ${nodes}")
