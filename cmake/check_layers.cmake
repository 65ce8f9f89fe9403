# Fails when an include crosses the engine's layers the wrong way.
#
# Layers, bottom up: board; eval, book and tablebase (each on board only);
# search; the offline tools; the front end (uci), which starts the tools.
# The tools run searches through the search layer's records and reporter,
# as the front end does, and never include the front end. Every layer may
# use the output channel, which itself includes nothing else of the engine.
#
# Run as: cmake -DSOURCE_DIR=<repo>/Source -P check_layers.cmake
set(rank_output 0)
set(rank_board 1)
set(rank_eval 2)
set(rank_book 2)
set(rank_tablebase 2)
set(rank_search 3)
set(rank_tools 4)
set(rank_uci 5)

file(GLOB_RECURSE sources "${SOURCE_DIR}/*.h" "${SOURCE_DIR}/*.cpp" "${SOURCE_DIR}/*.def")
set(faults 0)
foreach(path IN LISTS sources)
    file(RELATIVE_PATH rel "${SOURCE_DIR}" "${path}")
    string(REGEX MATCH "^[^/]+" layer "${rel}")
    if(NOT DEFINED rank_${layer})
        message(SEND_ERROR "${rel}: not in a known layer")
        math(EXPR faults "${faults} + 1")
        continue()
    endif()
    file(STRINGS "${path}" includes REGEX "^[ \t]*#[ \t]*include[ \t]*\"")
    foreach(line IN LISTS includes)
        string(REGEX REPLACE "^[ \t]*#[ \t]*include[ \t]*\"([^\"]*)\".*" "\\1" target "${line}")
        string(REGEX MATCH "^[^/]+" target_layer "${target}")
        if(target_layer STREQUAL layer)
            continue()
        endif()
        if(NOT DEFINED rank_${target_layer})
            message(SEND_ERROR "${rel}: includes ${target}, which is in no layer")
            math(EXPR faults "${faults} + 1")
        elseif(layer STREQUAL "output")
            message(SEND_ERROR "${rel}: the output channel includes ${target}")
            math(EXPR faults "${faults} + 1")
        elseif(target_layer STREQUAL "output")
            continue()
        elseif(NOT rank_${target_layer} LESS rank_${layer})
            message(SEND_ERROR "${rel}: ${layer} may not include ${target}")
            math(EXPR faults "${faults} + 1")
        endif()
    endforeach()
endforeach()
if(faults GREATER 0)
    message(FATAL_ERROR "${faults} include(s) cross a layer the wrong way")
endif()
message(STATUS "every include points down")
