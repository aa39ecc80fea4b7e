#include "reporting/modFinishReports.h"

#include "database/DatabaseValues.h"
#include "outlook/OutlookValues.h"
#include "platform/basic/clock.h"
#include "platform/basic/convert.h"
#include "platform/basic/text.h"
#include "platform/dialogs/dialogs.h"
#include "reporting/cDatabaseTarget.h"
#include "reporting/ReportingValues.h"
#include "shell/modErrorReport.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

#include <algorithm>

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::Failure;
using platform::basic::Date;
using platform::basic::vbCrLf;
using platform::outlook::AppointmentItem;
using platform::outlook::MAPIFolder;

namespace {

constexpr int mostNamed = 10;
constexpr qint32 targetAccess = 2, targetSqlServer = 3;
constexpr int firstYear = 1900;  // of a date that is set

bool isDatabase(qint32 target) {
  return target == targetAccess || target == targetSqlServer;
}

QString startText(const AppointmentItem& item) {
  if (item.AllDayEvent()) return item.Start().date().toString(Qt::ISODate);
  return item.stored().start.toUTC().toString(Qt::ISODate);
}

/// By the calendar's own mark first: a floating time alone may only look changed, when the user's zone was.
bool hasChanged(const AppointmentItem& item, const ReportedRow& row) {
  if (item.stored().tag == row.tag) return false;
  return item.Subject() != row.subject || startText(item) != row.start || item.Duration() != row.minutes;
}

std::shared_ptr<MAPIFolder> folderOf(const QString& id) {
  const OutlookValues& values = outlookValues();
  if (values.gNameSpace) return values.gNameSpace->GetFolderFromID(id);
  if (values.gCalendarFolder && values.gCalendarFolder->Id() == id) return values.gCalendarFolder;
  throw Failure(platform::calendar::errNotFound, u"The calendar \"%1\" cannot be found."_s.arg(id));
}

/// One run of the journal.
class Finisher {
 public:
  /// A database that could not be asked about an earlier run (`unreachable` tells why) is not asked again:
  /// each try may wait for its server.
  Finisher(const ReportRun& run, const QString& file, QString& unreachable)
      : run_(run),
        before_(fncJournalText(run)),
        file_(file),
        unreachable_(unreachable),
        reasons_(run.rows.size()) {}

  void askTarget() {
    const QString reason = fncAsk();
    for (qsizetype i = 0; i < run_.rows.size(); ++i)
      if (!run_.rows[i].stored) reasons_[i] = reason;
  }

  void stampAll() {
    QStringList folders;
    for (const ReportedRow& row : run_.rows)
      if (isToBeStamped(row) && !folders.contains(row.folder)) folders.append(row.folder);
    for (const QString& folder : folders) {
      const auto failure = tolerate([&] { stampIn(folder); });
      if (failure) giveReason(folder, failure->description());
    }
  }

  /// Drops what is done from the journal, and keeps the rest.
  void close(FinishedReports& finished) {
    for (qsizetype i = 0; i < run_.rows.size(); ++i) {
      run_.rows[i].settled = reasons_[i].isEmpty();
      if (run_.rows[i].settled) continue;
      findAgain(run_.rows[i]);
      finished.unsettled.append({file_, run_.rows[i], reasons_[i]});
    }
    if (!changed_.isEmpty())
      finished.news.append(
          u"These appointments have been changed since they were reported, and are stamped as reported now:"_s +
          vbCrLf + fncNamed(changed_));
    const auto twice = fncReportedTwice();
    if (twice && !twice->isEmpty())
      finished.news.append(
          u"A report of these appointments was interrupted here, and they have been stamped from elsewhere "
          "since. The database has a second line of each: where it is one too many, it has to be removed "
          "there:"_s +
          vbCrLf + fncNamed(*twice));
    tellLeft(finished);
    keepLeft(!twice);
    if (!run_.rows.isEmpty() && finished.blocked.isEmpty()) finished.blocked = blocked_;
    if (run_.rows.isEmpty())
      cReportJournal::Remove(file_);
    else if (fncJournalText(run_) != before_)
      cReportJournal::Write(file_, run_);
  }

 private:
  /// Why the target could not say which rows it has, or nothing.
  QString fncAsk() {
    bool open = false;
    for (const ReportedRow& row : run_.rows) open = open || !row.stored;
    if (!open) return {};
    if (isUnreachable()) return blocked_ = unreachable_;
    QString reason;
    const auto failure = tolerate([&] { reason = fncAskIt(); });
    if (!failure) return reason;
    return blocked_ = fncBlockedBy(*failure);
  }

  bool isUnreachable() const { return isDatabase(run_.target) && !unreachable_.isEmpty(); }

  QString fncBlockedBy(const Failure& failure) {
    const QString reason = u"the place that it was reported to cannot be asked: "_s + failure.description();
    if (isDatabase(run_.target)) unreachable_ = reason;
    return reason;
  }

  /// The file of an appointment may have got another name, by which the list will know it.
  static void findAgain(ReportedRow& row) {
    tolerate([&] { row.entryId = folderOf(row.folder)->GetItemFromID(row.entryId)->EntryID(); });
  }

  QString fncAskIt() {
    const auto target = fncAskableTarget(run_.target);
    const QString elsewhere = u"it was reported to another place than the present one: "_s + run_.place;
    if (!target || target->Place() != run_.place) return elsewhere;
    const auto stored = target->Stored(run_);
    QList<ReportedRow> known;
    for (qsizetype i = 0; i < run_.rows.size(); ++i) {
      if (!run_.rows[i].stored) run_.rows[i].stored = stored[i];
      if (run_.rows[i].stored) known.append(run_.rows[i]);  // the others were never reported
    }
    run_.rows = known;
    reasons_ = QStringList(known.size());
    return {};
  }

  static bool isToBeStamped(const ReportedRow& row) { return row.stored && !row.settled; }

  void stampIn(const QString& id) {
    const auto folder = folderOf(id);
    folder->HoldSaves();
    for (qsizetype i = 0; i < run_.rows.size(); ++i) {
      ReportedRow& row = run_.rows[i];
      if (row.folder != id || !isToBeStamped(row)) continue;
      const auto failure = tolerate([&] { row.stampedElsewhere = !stampTwice(*folder, row); });
      if (failure) reasons_[i] = failure->description();
    }
    for (const auto& unsaved : folder->FlushSaves())
      for (qsizetype i = 0; i < run_.rows.size(); ++i)
        if (run_.rows[i].folder == unsaved.folder && run_.rows[i].entryId == unsaved.entryId)
          reasons_[i] = unsaved.failure.description();
  }

  /// Once more where another program changes the appointment at that moment.
  bool stampTwice(const MAPIFolder& folder, ReportedRow& row) {
    bool done = false;
    const auto failure = tolerate([&] { done = stamp(folder, row); });
    if (!failure) return done;
    if (failure->number() != platform::calendar::errChangedMeanwhile) throw Failure(*failure);
    return stamp(folder, row);
  }

  /// False where it bears a stamp already.
  bool stamp(const MAPIFolder& folder, ReportedRow& row) {
    const auto item = folder.GetItemFromID(row.entryId);
    row.entryId = item->EntryID();  // its file may have got another name
    if (!item->BillingInformation().isEmpty()) return false;
    const bool changed = hasChanged(*item, row);
    subStamp(*item, row.stored->year() < firstYear ? platform::basic::Now() : *row.stored);
    if (changed) changed_.append(fncShown(row));
    return true;
  }

  /// A stamp that was there already may be one of this run, or of another computer that knew nothing of it
  /// and reported the appointment as well. None where that cannot be asked now.
  std::optional<QStringList> fncReportedTwice() {
    QStringList twice;
    if (std::none_of(run_.rows.cbegin(), run_.rows.cend(), isDoubtful)) return twice;
    if (isUnreachable()) {
      blocked_ = unreachable_;
      return std::nullopt;
    }
    bool asked = true;
    const auto failure = tolerate([&] {
      const auto target = fncAskableTarget(run_.target);
      if (!target) return;
      asked = target->Place() == run_.place;
      if (!asked) return;
      const auto again = target->StoredAgain(run_);
      for (qsizetype i = 0; i < run_.rows.size(); ++i)
        if (isDoubtful(run_.rows[i]) && again[i]) twice.append(fncShown(run_.rows[i]));
    });
    if (failure) blocked_ = fncBlockedBy(*failure);
    if (failure || !asked) return std::nullopt;
    return twice;
  }

  static bool isDoubtful(const ReportedRow& row) { return row.settled && row.stampedElsewhere; }

  void tellLeft(FinishedReports& finished) {
    const qsizetype left = std::count_if(reasons_.cbegin(), reasons_.cend(),
                                         [](const QString& reason) { return !reason.isEmpty(); });
    subLog(u"Worked off an interrupted report: %1 of its appointments are left"_s.arg(left));
    if (left == 0) return;
    const QString text = fncNews();
    if (text == run_.told) return;
    finished.news.append(text);
    run_.told = text;
  }

  /// What waits for its stamp, and what is still to be asked about; with them the rows whose lines are equal
  /// to theirs, or those would be taken for second ones.
  void keepLeft(bool withQuestion) {
    QList<ReportedRow> left, kept;
    for (ReportedRow& row : run_.rows) {
      if (row.settled && !withQuestion) row.stampedElsewhere = false;  // it has been asked about
      if (!row.settled || row.stampedElsewhere) left.append(row);
    }
    for (const ReportedRow& row : std::as_const(run_.rows))
      if (std::any_of(left.cbegin(), left.cend(),
                      [&](const ReportedRow& other) { return other.line == row.line; }))
        kept.append(row);
    run_.rows = kept;
  }

  void giveReason(const QString& folder, const QString& reason) {
    for (qsizetype i = 0; i < run_.rows.size(); ++i)
      if (run_.rows[i].folder == folder && isToBeStamped(run_.rows[i])) reasons_[i] = reason;
  }

  QString fncNews() const {
    QStringList stored, unknown;
    for (qsizetype i = 0; i < reasons_.size(); ++i) {
      if (reasons_[i].isEmpty()) continue;
      const ReportedRow& row = run_.rows[i];
      (row.stored ? stored : unknown).append(fncShown(row) + u": "_s + reasons_[i]);
    }
    QString text = u"The report of %1 was interrupted."_s.arg(run_.begun);
    if (!stored.isEmpty())
      text += vbCrLf + u"These appointments are reported and could not be stamped as reported:"_s + vbCrLf +
              fncNamed(stored);
    if (!unknown.isEmpty())
      text += vbCrLf + u"It is not known whether these appointments were reported:"_s + vbCrLf +
              fncNamed(unknown);
    return text + vbCrLf + u"None of them will be reported again without a question."_s;
  }

  ReportRun run_;
  QByteArray before_;
  QString file_;
  QString& unreachable_;
  QStringList reasons_;  // why a row is left; empty: it is done
  QString blocked_;      // why the present place could not be asked
  QStringList changed_;
};

void setAside(const QString& file, const Failure& failure, FinishedReports& finished) {
  const QString name = cReportJournal::SetAside(file);
  finished.news.append(
      u"The journal of an interrupted report cannot be read. Appointments may have been reported without "
      "being stamped as reported. The file is kept as \"%1\"."_s.arg(name) +
      vbCrLf + failure.description());
}

/// It stays as it is for the program that can read it.
void leaveToLaterVersion(const QString& file, const Failure& failure, FinishedReports& finished) {
  finished.laterVersion = true;
  if (!cReportJournal::MarkTold(file)) return;
  finished.news.append(
      u"A later version of this program has left a report that was interrupted, and this one cannot read its "
      "journal. It stays for that version: please start it once. Until then, appointments that may have been "
      "reported already are asked about before they are reported."_s +
      vbCrLf + failure.description());
}

void finishRun(const QString& file, FinishedReports& finished, QString& unreachable) {
  ReportRun run;
  if (const auto unreadable = tolerate([&] { run = cReportJournal::Read(file); })) {
    if (unreadable->number() == errLaterVersion) return leaveToLaterVersion(file, *unreadable, finished);
    if (unreadable->number() != platform::failure::permissionDenied)
      return setAside(file, *unreadable, finished);
    // it may be readable the next time, and is not to be forgotten until then
    finished.blocked = unreadable->description();
    finished.news.append(u"The journal of an interrupted report cannot be read now: "_s + finished.blocked);
    return;
  }
  Finisher finisher(run, file, unreachable);
  finisher.askTarget();
  finisher.stampAll();
  finisher.close(finished);
}

}  // namespace

FinishedReports fncFinishReports(const cReportJournal& journal) {
  FinishedReports finished;
  QString unreachable;
  for (const QString& file : journal.Files()) {
    const auto failure = tolerate([&] { finishRun(file, finished, unreachable); });
    if (failure) finished.news.append(failure->description());
  }
  return finished;
}

void subFinishReportsAtStart() {
  const cReportJournal journal(reportingValues().journalFolder);
  if (reportingValues().journalFolder.isEmpty() || journal.Files().isEmpty()) return;
  subLog(u"Working off interrupted reports"_s);
  QStringList news;
  const auto failure = tolerate([&] {
    const auto lock = journal.Lock();
    if (lock) news = fncFinishReports(journal).news;  // else another program is reporting: the run is its own
  });
  if (failure) news.append(failure->description());
  if (!news.isEmpty())
    platform::dialogs::Dialogs::current().MsgBox(news.join(vbCrLf + vbCrLf), platform::dialogs::vbExclamation,
                                                 gTitle);
}

void subStamp(AppointmentItem& appointment, const Date& reported) {
  appointment.setBillingInformation(platform::basic::CStr(reported));
  appointment.Save();
}

ReportedRow fncReportedRow(const AppointmentItem& appointment) {
  ReportedRow row;
  row.folder = appointment.FolderId();
  row.entryId = appointment.EntryID();
  row.tag = appointment.stored().tag;
  row.subject = appointment.stored().subject;
  row.start = startText(appointment);
  row.minutes = appointment.Duration();
  return row;
}

std::unique_ptr<AskableTarget> fncAskableTarget(qint32 intTarget, qint16 intPersonID) {
  if (!isDatabase(intTarget))
    return reportingValues().askableTarget ? reportingValues().askableTarget(intTarget) : nullptr;
  return std::make_unique<cDatabaseTarget>(intPersonID);
}

QString fncNamed(const QStringList& appointments) {
  QStringList named = appointments.mid(0, mostNamed);
  if (appointments.size() > mostNamed) named.append(u"... (%1 more)"_s.arg(appointments.size() - mostNamed));
  return named.join(vbCrLf);
}

QString fncShown(const ReportedRow& row) {
  return u"\"%1\" (%2)"_s.arg(row.line.subject, row.line.day.toString(Qt::ISODate));
}

}  // namespace hourbook
