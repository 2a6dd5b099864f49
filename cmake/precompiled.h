// Headers nearly every file of the build includes, parsed once per target
// (RNW_PCH, used by `make test`): they are most of a file's compile time.
#pragma once
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <vector>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>
#if __has_include(<QWidget>)
#include <QCheckBox>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QWidget>
#endif
#if __has_include(<QSqlQuery>)
#include <QSqlDatabase>
#include <QSqlQuery>
#endif
