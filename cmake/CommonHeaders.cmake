# The headers that most sources include, parsed once for all targets that use Qt: parsing them is the larger part of the
# work of a build. None of Qt Gui, Widgets and Test is here, or targets without windows would see them, too.
if(NOT OSTREL_PRECOMPILE OR CMAKE_CXX_COMPILER_LAUNCHER) # ccache does not keep what precompiled headers are used for
    return()
endif()

set(source "${CMAKE_CURRENT_BINARY_DIR}/commonheaders.cpp")
file(CONFIGURE OUTPUT "${source}" CONTENT "// A target needs a source.\n")
add_library(ostrel_commonheaders STATIC "${source}")
target_link_libraries(ostrel_commonheaders PRIVATE Ostrel::flags Qt5::Core)
target_precompile_headers(ostrel_commonheaders PRIVATE
    <algorithm> <array> <cmath> <functional> <memory> <optional> <string> <utility> <vector>
    <QDateTime> <QDir> <QFile> <QFileInfo> <QJsonArray> <QJsonDocument> <QJsonObject> <QMap> <QObject> <QProcess>
    <QString> <QStringList> <QTemporaryDir> <QTimer> <QUrl> <QVector>)
