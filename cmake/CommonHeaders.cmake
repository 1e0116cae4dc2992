# The headers that most sources include, parsed once: parsing them is the larger part of the work of a build.

# ostrel_precompile(<target> [LIBS ...] HEADERS ...) makes the library <target>, of which others take the precompiled
# headers.
function(ostrel_precompile target)
    if(NOT OSTREL_PRECOMPILE OR CMAKE_CXX_COMPILER_LAUNCHER) # ccache does not keep what precompiled headers are used for
        return()
    endif()
    cmake_parse_arguments(ARG "" "" "LIBS;HEADERS" ${ARGN})
    set(source "${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp")
    file(CONFIGURE OUTPUT "${source}" CONTENT "// A target needs a source.\n")
    add_library(${target} STATIC "${source}")
    target_link_libraries(${target} PRIVATE Ostrel::flags ${ARG_LIBS})
    target_precompile_headers(${target} PRIVATE ${ARG_HEADERS})
endfunction()

# ostrel_take_headers(<target> [WITHOUT_QT]) spares <target> the parsing of common headers, where they are precompiled.
# WITHOUT_QT suits libraries alone: programs without Qt are compiled with -fPIE, which needs headers of its own.
function(ostrel_take_headers target)
    cmake_parse_arguments(ARG "WITHOUT_QT" "" "" ${ARGN})
    set(headers ostrel_qtheaders)
    if(ARG_WITHOUT_QT)
        set(headers ostrel_standardheaders)
    endif()
    if(TARGET ${headers})
        target_precompile_headers(${target} REUSE_FROM ${headers})
    endif()
endfunction()

set(standard_headers <algorithm> <array> <cmath> <functional> <memory> <optional> <string> <utility> <vector>)
ostrel_precompile(ostrel_standardheaders HEADERS ${standard_headers})

# ostrel_precompile_qt() does the same for targets with Qt, once that is found. None of Qt Gui, Widgets and Test is here,
# or targets without windows would see them, too.
function(ostrel_precompile_qt)
    ostrel_precompile(ostrel_qtheaders LIBS Qt::Core HEADERS ${standard_headers}
        <QDateTime> <QDir> <QFile> <QFileInfo> <QJsonArray> <QJsonDocument> <QJsonObject> <QMap> <QObject> <QProcess>
        <QString> <QStringList> <QTemporaryDir> <QTimer> <QUrl> <QVector>)
endfunction()
