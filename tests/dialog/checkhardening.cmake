# Checks that the plug-in library was built with what makes a fault hard to exploit.
#
#   cmake -DLIBRARY=path -P checkhardening.cmake

function(expect option pattern)
    execute_process(COMMAND readelf --wide ${option} "${LIBRARY}"
        OUTPUT_VARIABLE text ERROR_VARIABLE errors RESULT_VARIABLE code)
    if(NOT code EQUAL 0)
        message(FATAL_ERROR "readelf ${option}: ${code}\n${errors}")
    endif()
    if(NOT text MATCHES "${pattern}")
        message(FATAL_ERROR "\"${pattern}\" is not in the answer to ${option}:\n${text}")
    endif()
endfunction()

# All addresses are resolved at load, and the table of them is read-only then.
expect(--segments "GNU_RELRO")
expect(--dynamic "BIND_NOW")
# No segment is writable and executable, the stack least of all.
expect(--segments "GNU_STACK[^\n]* RW +0x")
# Functions with buffers guard their return address.
expect(--dyn-syms "__stack_chk_fail")
