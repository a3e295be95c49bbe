# Headers that most sources use, compiled once for all targets of a kind. They only save time: every
# source still includes what it uses, and script/lint reads each of them without these.

set(BRIMLET_PRECOMPILED_core
  <QCoroTask> <QByteArray> <QFile> <QObject> <QString> <QStringList>
  <algorithm> <array> <chrono> <cmath> <functional> <map> <memory> <optional> <utility> <variant> <vector>)
set(BRIMLET_PRECOMPILED_gui ${BRIMLET_PRECOMPILED_core} <QFont> <QImage> <QPainter>)
set(BRIMLET_PRECOMPILED_widgets ${BRIMLET_PRECOMPILED_gui} <QApplication> <QMouseEvent> <QWidget>)
set(BRIMLET_PRECOMPILED_LINK_core QCoro6::Coro Qt6::Core)
set(BRIMLET_PRECOMPILED_LINK_gui ${BRIMLET_PRECOMPILED_LINK_core} Qt6::Gui)
set(BRIMLET_PRECOMPILED_LINK_widgets ${BRIMLET_PRECOMPILED_LINK_gui} Qt6::Widgets)

# The same for tests, which are compiled with other options.
set(test_headers <QCoreApplication> <QDir> <QJsonArray> <QJsonDocument> <QJsonObject> <QProcess>
  <QRegularExpression> <QSignalSpy> <QTemporaryDir> <QTest>)
foreach(kind IN ITEMS core gui widgets)
  set(BRIMLET_PRECOMPILED_test_${kind} ${BRIMLET_PRECOMPILED_${kind}} ${test_headers})
  set(BRIMLET_PRECOMPILED_LINK_test_${kind} brimlet_test_options ${BRIMLET_PRECOMPILED_LINK_${kind}} Qt6::Test)
endforeach()
set(BRIMLET_PRECOMPILED_test_network ${BRIMLET_PRECOMPILED_test_core} <nlohmann/json.hpp>)
set(BRIMLET_PRECOMPILED_LINK_test_network
  ${BRIMLET_PRECOMPILED_LINK_test_widgets} nlohmann_json::nlohmann_json Qt6::Network)

# brimlet_precompile(TARGET KIND): what TARGET links has to define the same macros as KIND's libraries,
# or the compiler refuses the headers.
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/precompiled.cpp CONTENT "")
function(brimlet_precompile target kind)
  set(owner brimlet_precompiled_${kind})
  if(NOT TARGET ${owner})
    add_library(${owner} OBJECT ${CMAKE_BINARY_DIR}/precompiled.cpp)
    set_target_properties(${owner} PROPERTIES AUTOMOC OFF)
    target_link_libraries(${owner} PRIVATE brimlet_options ${BRIMLET_PRECOMPILED_LINK_${kind}})
    target_precompile_headers(${owner} PRIVATE ${BRIMLET_PRECOMPILED_${kind}})
  endif()
  target_precompile_headers(${target} REUSE_FROM ${owner})
endfunction()
