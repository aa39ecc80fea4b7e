#pragma once
#include "platform/calendar/icalendar/writer.h"

// Changes to a calendar in one file, kept back until they are written in one step.
namespace platform::calendar::icalendar {

/// Stands before a source and its writer. While it holds, the events of every UID that was changed are kept
/// here as a small calendar of their own, and whoever reads through this sees them. At the end the lines that
/// differ go into the file together. An event that another program has changed meanwhile is taken from the
/// file and the changes asked for are made on it once more. What cannot be kept apart without doubt (events
/// without UID or END, files of a folder, new items) is written at once.
class Holding : public EventSource, public Writer {
 public:
  Holding(EventSource& inner, FileWriter& writer, ZoneBook& book, QString label)
      : inner_(inner), writer_(writer), book_(book), label_(std::move(label)) {}

  /// A change that could not be written.
  struct Missed {
    ItemKey key;
    Failure failure;
  };
  void hold() { holding_ = true; }
  QList<Missed> flush();
  /// Writes what is kept when it has become much; what then fails is told by `flush`. To be called between
  /// two changes.
  void makeRoom();

  QList<Group> between(qint64 from, qint64 to) override;
  QList<Group> withSubject(const QString& subject) override;
  Group withUid(const QString& uid) override;
  qint64 countUpTo(qint64 most) override { return inner_.countUpTo(most); }
  QList<Problem> problems() override { return inner_.problems(); }
  Snapshot snapshot(const QString& name, const QString& uid) override;
  void written(const QString& name, const QList<files::Splice>& splices,
               const files::Fingerprint& after) override {
    inner_.written(name, splices, after);
  }
  bool isFolder() const override { return inner_.isFolder(); }
  QString pathOf(const QString& name) const override { return inner_.pathOf(name); }
  QString changeTag() override;
  QString othersTag(Look look) override { return inner_.othersTag(look); }
  void sweep() override { inner_.sweep(); }

  bool put(const Snapshot& snapshot, const QString& uid, const QList<files::Splice>& splices,
           const Step& step) override;
  bool create(const QString& name, const QByteArray& bytes) override { return writer_.create(name, bytes); }
  bool remove(const Snapshot& snapshot) override { return writer_.remove(snapshot); }

 private:
  /// An event as it stands in the file, and what is to stand there.
  struct Stretch {
    qint64 offset = 0;
    QByteArray was, now;
  };
  /// All events of one UID: a calendar made of the head of theirs and the stretches.
  struct Kept {
    QByteArray head, tail;
    QList<Stretch> stretches;
    std::shared_ptr<const CalendarFile> file;
    QList<Step> steps;

    QList<EventRef> events() const;
    Group group() const;
    void apply(const QList<files::Splice>& splices);
    void read(const QString& name);
  };

  std::optional<Kept> kept(const QList<EventRef>& events) const;
  QList<Group> overlaid(QList<Group> groups) const;
  QList<Missed> flushed();
  void replay(const QString& uid, QList<Missed>& missed);
  bool writeAll(QList<Missed>& missed);
  void drop(const Failure& failure, QList<Missed>& missed);

  EventSource& inner_;
  FileWriter& writer_;
  ZoneBook& book_;
  QString label_;
  bool holding_ = false;
  QMap<QString, Kept> kept_;
  std::optional<Kept> draft_;  // of the snapshot given last
  QString draftUid_;
  QList<Missed> missed_;
  qint64 keptSteps_ = 0, keptBytes_ = 0;
  quint64 revision_ = 0;
};

/// From here on `makeRoom` writes.
inline constexpr qint64 maxHeldSteps = 1000;
inline constexpr qint64 maxHeldBytes = 16LL * 1024 * 1024;

}  // namespace platform::calendar::icalendar
