# What all targets of this project share: language level, warnings, sanitizers, hardening.

include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTORCC_OPTIONS --format-version 1) # without file times: the same sources give the same program

if(WIN32)
    enable_language(RC)
endif()

option(OSTREL_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)
option(OSTREL_PRECOMPILE
    "Parse the headers that most sources include once; hides a missing #include, so releases and lint do without" OFF)
option(OSTREL_FUZZ "Build the fuzz targets with libFuzzer; needs clang and OSTREL_SANITIZE" OFF)

add_library(ostrel_flags INTERFACE)
add_library(Ostrel::flags ALIAS ostrel_flags)
target_compile_features(ostrel_flags INTERFACE cxx_std_20)
target_include_directories(ostrel_flags INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(ostrel_flags INTERFACE
    -Wall -Wextra -Wpedantic $<$<NOT:${OSTREL_NARROWING_MACROS}>:-Wconversion> -Wold-style-cast -Woverloaded-virtual -Wnon-virtual-dtor
    $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local>
    $<$<CONFIG:Release>:-fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>
    "$<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>")
target_link_options(ostrel_flags INTERFACE $<$<CONFIG:Release>:-fstack-protector-strong>)
target_compile_definitions(ostrel_flags INTERFACE
    QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_URL_CAST_FROM_STRING QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_DISABLE_DEPRECATED_BEFORE=0x050F00)
if(OSTREL_PRECOMPILE)
    # g++ 12 warns falsely of string operations of the standard library where its headers are precompiled.
    target_compile_options(ostrel_flags INTERFACE
        $<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds> $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
        $<$<CXX_COMPILER_ID:GNU>:-Wno-stringop-overread> $<$<CXX_COMPILER_ID:GNU>:-Wno-stringop-overflow>)
endif()
if(OSTREL_SANITIZE)
    target_compile_options(ostrel_flags INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(ostrel_flags INTERFACE -fsanitize=address,undefined)
    set(OSTREL_SANITIZER_ENVIRONMENT
        "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/testkit/known-leaks.txt:print_suppressions=0")
else()
    # Everyday builds are linked as releases are, so that everyday tests meet what users run.
    target_link_options(ostrel_flags INTERFACE $<$<NOT:$<PLATFORM_ID:Windows>>:-Wl,-z,relro,-z,now>)
endif()
if(OSTREL_FUZZ)
    # Here numbers come from hostile files, so a floating-point number that no integer holds is a fault too.
    target_compile_options(ostrel_flags INTERFACE
        -fsanitize=fuzzer-no-link,float-cast-overflow -fno-sanitize-recover=all)
    target_link_options(ostrel_flags INTERFACE -fsanitize=float-cast-overflow)
endif()

# ostrel_add_library(<folder part> [WITHOUT_QT] SOURCES ... LIBS ...) makes the library ostrel_<part>, alias
# Ostrel::<part>.
function(ostrel_add_library part)
    cmake_parse_arguments(ARG "WITHOUT_QT" "" "SOURCES;LIBS" ${ARGN})
    add_library(ostrel_${part} STATIC ${ARG_SOURCES})
    add_library(Ostrel::${part} ALIAS ostrel_${part})
    target_link_libraries(ostrel_${part} PUBLIC Ostrel::flags ${ARG_LIBS})
    if(ARG_WITHOUT_QT)
        ostrel_take_headers(ostrel_${part} WITHOUT_QT)
    else()
        set_target_properties(ostrel_${part} PROPERTIES AUTOMOC ON)
        ostrel_take_headers(ostrel_${part})
    endif()
endfunction()

# ostrel_add_program(<target> [WITHOUT_QT] OUTPUT <file name> SOURCES ... LIBS ...) makes a program next to the other
# programs.
function(ostrel_add_program target)
    cmake_parse_arguments(ARG "WITHOUT_QT" "OUTPUT" "SOURCES;LIBS" ${ARGN})
    add_executable(${target} ${ARG_SOURCES})
    target_link_libraries(${target} PRIVATE Ostrel::flags ${ARG_LIBS})
    if(NOT ARG_WITHOUT_QT)
        set_target_properties(${target} PROPERTIES AUTOMOC ON)
        ostrel_take_headers(${target})
    endif()
    if(WIN32)
        target_sources(${target} PRIVATE "${PROJECT_SOURCE_DIR}/packaging/windows/utf8.rc")
    endif()
    if("${ARG_OUTPUT}" MATCHES "\\.exe$")
        set_target_properties(${target} PROPERTIES SUFFIX "") # it is part of the name, on every system
    endif()
    set_target_properties(${target} PROPERTIES
        OUTPUT_NAME "${ARG_OUTPUT}" RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
endfunction()

# ostrel_add_test(<name> [SOURCES ...] [LIBS ...] [FAKES] [TOOLS] [DISPLAY] [LOCALE <name>] [TIMEOUT <seconds>]) adds
# the test <name> from <name>.cpp. Any Qt warning fails it. FAKES puts the fake tools first in PATH, TOOLS the programs
# that we build. DISPLAY gives it a virtual display with a window manager, as windows of a fixed size need. It runs in
# the locale C.UTF-8 unless another is named.
function(ostrel_add_test name)
    cmake_parse_arguments(ARG "FAKES;TOOLS;DISPLAY" "LOCALE;TIMEOUT" "SOURCES;LIBS" ${ARGN})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    if(NOT ARG_LOCALE)
        set(ARG_LOCALE C.UTF-8)
    endif()
    # moc is called directly: a scan of each of the many test programs would cost more than all else about them.
    qt_generate_moc(${name}.cpp "${CMAKE_CURRENT_BINARY_DIR}/${name}.moc" TARGET ${name})
    add_executable(${name} ${name}.cpp "${CMAKE_CURRENT_BINARY_DIR}/${name}.moc" ${ARG_SOURCES})
    target_include_directories(${name} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}")
    target_link_libraries(${name} PRIVATE Ostrel::flags Qt::Test ${ARG_LIBS})
    ostrel_take_headers(${name})
    set(platform offscreen)
    set(wrapper "")
    if(ARG_DISPLAY)
        # The window manager may take a window's frame away while the platform asks for it; nothing is wrong then.
        # Nothing is drawn with OpenGL, whose libraries leak when the platform lets them go.
        set(platform xcb QT_XCB_GL_INTEGRATION=none QT_LOGGING_RULES=qt.qpa.xcb.warning=false)
        set(wrapper "${PROJECT_SOURCE_DIR}/testkit/windowdriver/with-display.sh")
    endif()
    add_test(NAME ${name} COMMAND ${wrapper} $<TARGET_FILE:${name}>)
    # Qt warns without a private runtime folder, as in containers.
    set(runtime "${CMAKE_BINARY_DIR}/runtime")
    file(MAKE_DIRECTORY "${runtime}")
    file(CHMOD "${runtime}" PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
    # The time that Qt itself gives a test function is for a row with Qt 5, for all rows together with Qt 6.
    set(environment QT_QPA_PLATFORM=${platform} QT_FATAL_WARNINGS=1 LC_ALL=${ARG_LOCALE} "XDG_RUNTIME_DIR=${runtime}"
        QTEST_FUNCTION_TIMEOUT=${ARG_TIMEOUT}000 ${OSTREL_SANITIZER_ENVIRONMENT})
    set(path "$ENV{PATH}")
    if(ARG_TOOLS)
        set(path "${CMAKE_BINARY_DIR}/bin:${path}")
    endif()
    if(ARG_FAKES)
        add_dependencies(${name} ostrel_fakes)
        set(path "${CMAKE_BINARY_DIR}/fakes:${path}")
    endif()
    set_tests_properties(${name} PROPERTIES # what may take long starts first
        TIMEOUT ${ARG_TIMEOUT} COST ${ARG_TIMEOUT} ENVIRONMENT "${environment};PATH=${path}")
endfunction()
