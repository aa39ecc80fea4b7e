#pragma once
#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimeZone>

#include <functional>
#include <memory>
#include <optional>
#include <variant>
#include <vector>
