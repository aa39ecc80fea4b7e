#pragma once
#include "platform/basic/value.h"
#include "platform/calendar/store.h"
#include "platform/outlook/constants.h"

#include <memory>

namespace platform::outlook {

class AppointmentItem;
class MailItem;

/// What the objects of one running application share.
struct Session {
  QString version = QStringLiteral("11.0.0.8169");
  QString draftFolder;  // empty: mails cannot be kept
};

/// `UserProperties.Find` returns nullptr when there is none. `Add` of a present name returns that property
/// with the type it has. Names compare without regard to case. A property lives no longer than its item.
class UserProperty {
 public:
  UserProperty(AppointmentItem& item, QString name) : item_(item), name_(std::move(name)) {}
  basic::Value Value() const;  // text, number (Double), Date or Boolean by its type
  void setValue(const basic::Value& value);

 private:
  AppointmentItem& item_;
  QString name_;
};

class UserProperties {
 public:
  explicit UserProperties(AppointmentItem& item) : item_(item) {}
  std::unique_ptr<UserProperty> Find(const QString& name) const;
  std::unique_ptr<UserProperty> Add(const QString& name, int type);

 private:
  AppointmentItem& item_;
};

/// One appointment, as read when it was found. Changes stand in the object until `Save` (or `Close` with
/// olSave) hands them to the store; a failing `Save` keeps them, a good one leaves the object holding what
/// was stored. Where somebody else has changed or removed the item meanwhile, the failure's description tells
/// what was to be written and what stands in the calendar now. Times are on the user's wall clock; a new
/// start keeps the duration. A duration that is no number of whole days makes an all-day event an appointment
/// from midnight on.
class AppointmentItem : public std::enable_shared_from_this<AppointmentItem> {
 public:
  AppointmentItem(std::shared_ptr<calendar::Store> store, QString folder, calendar::Item item,
                  std::shared_ptr<const Session> session = {});

  /// Its identity within its folder, for `MAPIFolder.GetItemFromID`; empty before the first `Save`.
  QString EntryID() const;
  QString FolderId() const { return folder_; }
  QString Subject() const;
  void setSubject(const QString& text);
  QString Body() const;
  void setBody(const QString& text);
  basic::Date Start() const;
  void setStart(const basic::Date& start);
  int Duration() const;  // minutes
  void setDuration(int minutes);
  bool AllDayEvent() const;
  void setAllDayEvent(bool on);
  int Sensitivity() const;
  bool IsRecurring() const;
  /// The text as it was set, a leading separator included; of another program's categories the names joined
  /// by the list separator and a blank.
  QString Categories() const;
  void setCategories(const QString& text);
  QString BillingInformation() const;
  void setBillingInformation(const QString& text);
  QString MessageClass() const;
  /// The series' master for an occurrence; Failure errNotFound when the master is gone, nullptr for the
  /// others, whose parent is the folder.
  std::shared_ptr<AppointmentItem> Parent() const;
  /// New items come without a reminder, and that is all that can be asked for: Failure for anything else.
  void setReminderSet(bool on);
  /// Only for a meeting request: the appointment it made. nullptr when there is none.
  std::shared_ptr<AppointmentItem> GetAssociatedAppointment(bool addToCalendar) const;
  UserProperties userProperties() { return UserProperties(*this); }
  void Save();
  /// Fails as `Save` does when somebody else has changed or removed the item since it was read; writes
  /// nothing.
  void RefuseIfChanged() const;
  void Close(int saveMode);
  /// A mail with the appointment, pending changes included, as a vCalendar for its first attachment.
  std::shared_ptr<MailItem> ForwardAsVcal() const;

  /// Its zone is defined nowhere; it is shown in the user's own.
  bool ZoneUnknown() const { return item_.zoneUnknown; }
  const calendar::Item& stored() const { return item_; }

 private:
  friend class UserProperty;
  friend class UserProperties;
  bool isNew() const { return item_.key.uid.isEmpty(); }
  QDateTime startMoment() const;
  /// The property as it stands in the object, pending ones first; the name as it is stored.
  std::optional<std::pair<QString, calendar::UserProperty>> findProperty(const QString& name) const;
  calendar::Change fullChange() const;
  QDateTime endAfter(int minutes) const;
  calendar::Item storeOrTell(const calendar::Change& change) const;
  QString bothVersions() const;

  std::shared_ptr<calendar::Store> store_;
  QString folder_;
  calendar::Item item_;
  calendar::Change change_;
  std::shared_ptr<const Session> session_;
  mutable QString seriesTag_;  // the series' own, when it was first asked for
};

/// The items of a folder. `Count` and `Item` know singles and the masters of series, ordered by start. `Find`
/// and `FindNext` walk the matches of a filter on `[Start]`, in order of start whether or not `Sort` was
/// called; with `setIncludeRecurrences` the occurrences of series instead of their masters. A filter joins
/// conditions with "and"; its dates are in the system's short date format with a time in minutes of the
/// user's clock, and both ends of each may be written with or without "#".
class Items {
 public:
  Items(std::shared_ptr<calendar::Store> store, QString folder, std::shared_ptr<const Session> session = {});
  int Count() const;
  std::shared_ptr<AppointmentItem> Item(int position) const;  // from 1; Failure when outside
  std::shared_ptr<AppointmentItem> Item(
      const QString& subject) const;  // first of that subject, or errNotFound
  /// A new appointment of half an hour; it reaches the calendar with its first `Save`.
  std::shared_ptr<AppointmentItem> Add() const;
  void Sort(const QString& property);  // "[Start]", the only one; Failure for others
  void setIncludeRecurrences(bool on) { includeRecurrences_ = on; }
  /// nullptr when nothing matches; Failure when the filter cannot be read. With recurrences the filter must
  /// bound the start at both ends.
  std::shared_ptr<AppointmentItem> Find(const QString& filter);
  /// nullptr behind the last match, and when nothing was looked for or the last `Find` failed.
  std::shared_ptr<AppointmentItem> FindNext();

 private:
  std::shared_ptr<AppointmentItem> object(const calendar::Item& item) const;
  const QList<calendar::Item>& listed() const;

  std::shared_ptr<calendar::Store> store_;
  QString folder_;
  std::shared_ptr<const Session> session_;
  bool includeRecurrences_ = false;
  mutable std::optional<QString> listedTag_;  // the folder's change tag when `listed_` was read
  mutable QList<calendar::Item> listed_;
  QList<calendar::Item> found_;
  qsizetype next_ = 0;
};

class Attachment {
 public:
  explicit Attachment(QByteArray content, QString fileName = QStringLiteral("attachment"),
                      QByteArray type = QByteArrayLiteral("application/octet-stream"))
      : content_(std::move(content)), fileName_(std::move(fileName)), type_(std::move(type)) {}
  /// Readable by its owner only: it mostly goes to a folder that all users share.
  void SaveAsFile(const QString& path) const;
  const QByteArray& content() const { return content_; }
  QString FileName() const { return fileName_; }
  const QByteArray& type() const { return type_; }

 private:
  QByteArray content_;
  QString fileName_;
  QByteArray type_;
};

/// A mail that the user sees and sends himself: `Save` keeps it as a draft file (a second `Save` replaces
/// it), `Display` opens the desktop's mail program with it: as a link, or as the draft file when there are
/// attachments, which a link is unable to carry. Failures name the file or give the reason.
class MailItem {
 public:
  explicit MailItem(QString draftFolder = {}) : draftFolder_(std::move(draftFolder)) {}

  QString To, Subject, Body;
  std::vector<Attachment> Attachments;  // Attachments(1) of the object model is [0]
  void Save();
  void Display();
  /// Where the draft is kept; empty before the first `Save`.
  QString draftFile() const { return draftFile_; }

 private:
  QString draftFolder_;
  QString draftFile_;
};

}  // namespace platform::outlook
