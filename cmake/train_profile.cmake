# The training run of a binary built with KORVEL_PGO=generate: the work whose
# speed matters, the benchmark's searches and perft from the start position
# and from a position full of castling, promotions and pins. The profile it
# leaves in PROFILE_DIR replaces any earlier one; the file "trained" marks
# it complete (the optimised build recompiles when that file changes).
#
# cmake -DKORVEL=<instrumented binary> -DPROFILE_DIR=<dir> -P train_profile.cmake
get_filename_component(KORVEL "${KORVEL}" ABSOLUTE)
get_filename_component(PROFILE_DIR "${PROFILE_DIR}" ABSOLUTE)
file(REMOVE_RECURSE "${PROFILE_DIR}")
set(work "${PROFILE_DIR}/run")
file(MAKE_DIRECTORY "${work}")

execute_process(COMMAND "${KORVEL}" -d 12 -bench WORKING_DIRECTORY "${work}"
    RESULT_VARIABLE status OUTPUT_QUIET)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "the benchmark of the training run failed (${status})")
endif()

file(WRITE "${work}/kiwipete.epd"
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - id kiwipete;\n")
file(WRITE "${work}/perft.txt" "perft 6\nload kiwipete.epd kiwipete\nperft 5\nquit\n")
execute_process(COMMAND "${KORVEL}" -c WORKING_DIRECTORY "${work}" INPUT_FILE "${work}/perft.txt"
    RESULT_VARIABLE status OUTPUT_VARIABLE output)
if(NOT status EQUAL 0 OR NOT output MATCHES "visited 119060324 nodes" OR NOT output MATCHES "visited 193690690 nodes")
    message(FATAL_ERROR "the perft of the training run failed (${status})")
endif()

# A clang-instrumented binary leaves raw profiles, one per run, that its
# optimising stage reads only once merged.
file(GLOB raw "${PROFILE_DIR}/*.profraw")
if(raw)
    find_program(PROFDATA NAMES llvm-profdata llvm-profdata-19 llvm-profdata-18 llvm-profdata-17
        llvm-profdata-16 llvm-profdata-15 llvm-profdata-14)
    if(NOT PROFDATA)
        message(FATAL_ERROR "the training left clang profiles but llvm-profdata is missing")
    endif()
    execute_process(COMMAND "${PROFDATA}" merge -o "${PROFILE_DIR}/korvel.profdata" ${raw}
        RESULT_VARIABLE status)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "merging the clang profiles failed (${status})")
    endif()
endif()

file(REMOVE_RECURSE "${work}")
file(TOUCH "${PROFILE_DIR}/trained")
