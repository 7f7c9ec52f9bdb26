cmake_minimum_required(VERSION 3.16)
# The plug-in's public ABI (cmake -P, STEP=dump|check|fixture); see
# docs/api.md, "ABI". ABIDW, ABIDIFF: the tools; SUPPRESSIONS: what of a
# binary is not our ABI (tests/abi/public.suppr).

# Writes `out`, the ABI of `binary` as the public headers declare it.
function(abi_dump binary out)
    execute_process(
        COMMAND ${ABIDW} --suppressions ${SUPPRESSIONS} --load-all-types --no-show-locs --no-corpus-path
                --no-comp-dir-path --out-file ${out} ${binary}
        RESULT_VARIABLE rc ERROR_VARIABLE err)
    if(NOT rc EQUAL 0)
        message(FATAL_ERROR "abidw failed (${rc}) on ${binary}:\n${err}")
    endif()
endfunction()

# Compares two ABI descriptions: `verdict` is "same", "compatible" (only
# additions) or "incompatible"; `report` is abidiff's report.
function(abi_compare old new verdict report)
    execute_process(COMMAND ${ABIDIFF} --non-reachable-types ${old} ${new}
        RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
    # abidiff's exit status is a bit set: 1 error, 2 usage, 4 a change, 8 an
    # incompatible change.
    math(EXPR error "${rc} & 3")
    math(EXPR changed "${rc} & 4")
    math(EXPR incompatible "${rc} & 8")
    if(NOT error EQUAL 0)
        message(FATAL_ERROR "abidiff failed (${rc}):\n${out}${err}")
    elseif(NOT incompatible EQUAL 0)
        set(${verdict} incompatible PARENT_SCOPE)
    elseif(NOT changed EQUAL 0)
        set(${verdict} compatible PARENT_SCOPE)
    else()
        set(${verdict} same PARENT_SCOPE)
    endif()
    set(${report} "${out}" PARENT_SCOPE)
endfunction()

# The virtual functions of every class in an ABI description, in vtable order,
# as "Class slot N: name". abidiff leaves them out when they have no symbol of
# their own, as an interface's pure virtual functions have none, and the host
# calls them by their slot.
function(abi_vtables abi out)
    file(STRINGS ${abi} lines REGEX "<class-decl name=|<member-function .*vtable-offset=|<function-decl name=")
    set(entries "")
    set(class "")
    set(slot "")
    foreach(line IN LISTS lines)
        if(line MATCHES "<class-decl name='([^']*)'")
            set(class "${CMAKE_MATCH_1}")
        elseif(line MATCHES "vtable-offset='([0-9]+)'")
            set(slot "${CMAKE_MATCH_1}")
        elseif(NOT slot STREQUAL "" AND line MATCHES "<function-decl name='([^']*)'")
            list(APPEND entries "${class} slot ${slot}: ${CMAKE_MATCH_1}")
            set(slot "")
        endif()
    endforeach()
    set(${out} "${entries}" PARENT_SCOPE)
endfunction()

# Appends to `report` (and makes `verdict` incompatible) every virtual
# function of a class of `old` that `new` lacks, moved or gained.
function(abi_compare_vtables old new verdict_var report_var)
    abi_vtables(${old} before)
    abi_vtables(${new} after)
    set(text "")
    set(classes "")
    foreach(entry IN LISTS before)
        string(REGEX REPLACE " slot .*" "" class "${entry}")
        list(APPEND classes "${class}")
        if(NOT entry IN_LIST after)
            string(APPEND text "  virtual function no longer at its slot: ${entry}\n")
        endif()
    endforeach()
    foreach(entry IN LISTS after)
        string(REGEX REPLACE " slot .*" "" class "${entry}")
        if(class IN_LIST classes AND NOT entry IN_LIST before)
            string(APPEND text "  virtual function now at this slot: ${entry}\n")
        endif()
    endforeach()
    if(NOT text STREQUAL "")
        set(${verdict_var} incompatible PARENT_SCOPE)
        set(${report_var} "${${report_var}}\nVirtual functions (the host calls them by their slot):\n${text}"
            PARENT_SCOPE)
    endif()
endfunction()

file(MAKE_DIRECTORY ${WORK})
if(STEP STREQUAL "dump")
    abi_dump(${LIBRARY} ${OUT})
elseif(STEP STREQUAL "check")
    # The headers as they are against the committed baseline.
    abi_dump(${LIBRARY} ${WORK}/current.abi)
    abi_compare(${BASELINE} ${WORK}/current.abi verdict report)
    abi_compare_vtables(${BASELINE} ${WORK}/current.abi verdict report)
    if(verdict STREQUAL "incompatible")
        message(FATAL_ERROR "The public ABI changed incompatibly since tests/abi/baseline.abi; "
                            "a host built earlier would break:\n${report}\n"
                            "Undo the change, or renew the baseline on purpose (docs/api.md, \"ABI\").")
    endif()
    message(STATUS "public ABI: ${verdict}\n${report}")
elseif(STEP STREQUAL "fixture")
    # A change to the headers that the check must refuse, naming what broke.
    file(STRINGS ${FIXTURE} expect REGEX "^expect: ")
    string(REGEX REPLACE "^expect: " "" expect "${expect}")
    abi_dump(${BEFORE} ${WORK}/before.abi)
    abi_dump(${AFTER} ${WORK}/after.abi)
    abi_compare(${WORK}/before.abi ${WORK}/after.abi verdict report)
    abi_compare_vtables(${WORK}/before.abi ${WORK}/after.abi verdict report)
    string(FIND "${report}" "${expect}" at)
    if(NOT verdict STREQUAL "incompatible" OR at EQUAL -1)
        message(FATAL_ERROR "${FIXTURE}: judged ${verdict}, expected incompatible naming '${expect}':\n${report}")
    endif()
    message(STATUS "refused as it should be:\n${report}")
endif()
