#include "platform/forms/widgets/windowplaces.h"

#include "platform/files/atomicfile.h"

#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScreen>
#include <QSplitter>
#include <QWidget>

namespace platform::forms {

namespace {

constexpr int settledAfter = 1000;       // milliseconds without a change
constexpr qint64 mostBytes = 64 * 1024;  // of a file that is ours
constexpr int leastWidth = 200, leastHeight = 150;

QJsonObject read(const QString& file) {
  const files::ReadResult found = files::readFile(file, mostBytes);
  return found.ok ? QJsonDocument::fromJson(found.bytes).object() : QJsonObject();
}

QRect rectOf(const QJsonObject& kept) {
  const auto number = [&](const char* key) { return kept[QLatin1String(key)].toInt(); };
  return {number("x"), number("y"), number("width"), number("height")};
}

/// The screen that shows most of a window.
QScreen* screenUnder(const QRect& place) {
  QScreen* best = QGuiApplication::primaryScreen();
  int most = 0;
  for (QScreen* screen : QGuiApplication::screens()) {
    const QRect seen = screen->availableGeometry() & place;
    if (seen.width() * seen.height() <= most) continue;
    most = seen.width() * seen.height();
    best = screen;
  }
  return best;
}

/// The same place, as far as it lies on a screen of now; what lies beyond is moved there, and made smaller
/// where it is larger.
QRect broughtBack(const QRect& place) {
  const QScreen* screen = screenUnder(place);
  if (!screen) return place;
  const QRect room = screen->availableGeometry();
  QRect back(place.topLeft(), place.size().boundedTo(room.size()));
  back.moveLeft(qBound(room.left(), back.left(), room.right() + 1 - back.width()));
  back.moveTop(qBound(room.top(), back.top(), room.bottom() + 1 - back.height()));
  return back;
}

QList<QSplitter*> namedSplitters(const QWidget* window) {
  QList<QSplitter*> named = window->findChildren<QSplitter*>();
  named.removeIf([](const QSplitter* splitter) { return splitter->objectName().isEmpty(); });
  return named;
}

}  // namespace

WindowPlaces::WindowPlaces(QWidget* window, const QString& file)
    : QObject(window), window_(window), file_(file) {
  later_.setSingleShot(true);
  later_.setInterval(settledAfter);
  connect(&later_, &QTimer::timeout, this, &WindowPlaces::save);
}

void WindowPlaces::restore() {
  if (file_.isEmpty()) return;
  const QJsonObject kept = read(file_);
  restoreWindow(kept[QLatin1String("window")].toObject());
  restoreSplitters(kept[QLatin1String("splitters")].toObject());
  normal_ = QRect(window_->pos(), window_->size());
  window_->installEventFilter(this);
  for (const QSplitter* splitter : namedSplitters(window_))
    connect(splitter, &QSplitter::splitterMoved, &later_, qOverload<>(&QTimer::start));
  restored_ = true;
}

void WindowPlaces::restoreWindow(const QJsonObject& kept) {
  const QRect place = rectOf(kept);
  if (place.width() < leastWidth || place.height() < leastHeight) return;
  const QRect back = broughtBack(place);
  window_->resize(back.size());
  window_->move(back.topLeft());  // the frame's corner, as `pos` gives it
  if (kept[QLatin1String("maximized")].toBool())
    window_->setWindowState(window_->windowState() | Qt::WindowMaximized);
}

void WindowPlaces::restoreSplitters(const QJsonObject& kept) {
  for (QSplitter* splitter : namedSplitters(window_)) {
    QList<int> sizes;
    int whole = 0;
    for (const QJsonValue& size : kept[splitter->objectName()].toArray()) {
      sizes.append(qBound(0, size.toInt(), 1'000'000));
      whole += sizes.last();
    }
    if (sizes.size() == splitter->count() && whole > 0) splitter->setSizes(sizes);
  }
}

void WindowPlaces::save() {
  later_.stop();
  if (!restored_) return;
  const QJsonObject window{{QStringLiteral("x"), normal_.x()},
                           {QStringLiteral("y"), normal_.y()},
                           {QStringLiteral("width"), normal_.width()},
                           {QStringLiteral("height"), normal_.height()},
                           {QStringLiteral("maximized"), window_->isMaximized()}};
  QJsonObject splitters;
  for (const QSplitter* splitter : namedSplitters(window_)) {
    QJsonArray sizes;
    for (const int size : splitter->sizes()) sizes.append(size);
    splitters.insert(splitter->objectName(), sizes);
  }
  const QJsonDocument kept(
      QJsonObject{{QStringLiteral("window"), window}, {QStringLiteral("splitters"), splitters}});
  QDir().mkpath(QFileInfo(file_).path());
  files::replaceFile(file_, kept.toJson());
}

bool WindowPlaces::eventFilter(QObject* watched, QEvent* event) {
  if (watched == window_) {
    switch (event->type()) {
      case QEvent::Move:
      case QEvent::Resize:
        if (!window_->isVisible()) break;
        if (!(window_->windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen | Qt::WindowMinimized)))
          normal_ = QRect(window_->pos(), window_->size());
        later_.start();
        break;
      case QEvent::WindowStateChange:
        later_.start();
        break;
      case QEvent::Close:
        save();
        break;
      default:
        break;
    }
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace platform::forms
