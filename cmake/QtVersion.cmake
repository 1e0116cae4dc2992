# Which Qt everything is built with. The sources take either; what differs between them is in process/qtversion.h and here.

set(OSTREL_QT 5 CACHE STRING "Major version of Qt: 5 (5.15) or 6 (6.4 or later)")
set_property(CACHE OSTREL_QT PROPERTY STRINGS 5 6)
if(NOT OSTREL_QT MATCHES "^[56]$")
    message(FATAL_ERROR "OSTREL_QT is \"${OSTREL_QT}\"; it can be 5 or 6")
endif()

# True for targets whose tests contain code that narrows numbers: the macros of Qt Test that wait do so since 6.5.
set(OSTREL_NARROWING_MACROS
    $<AND:$<STREQUAL:${OSTREL_QT},6>,$<IN_LIST:Qt::Test,$<TARGET_PROPERTY:LINK_LIBRARIES>>>)

# ostrel_find_qt(<component> ...) finds these parts of Qt; their targets are Qt::<component>. A macro, as CMake reads the
# variables of the package where moc runs.
macro(ostrel_find_qt)
    if(OSTREL_QT EQUAL 5)
        find_package(Qt5 5.15 REQUIRED COMPONENTS ${ARGN})
    else()
        find_package(Qt6 6.4 REQUIRED COMPONENTS ${ARGN})
    endif()
endmacro()
