#pragma once
#include "platform/basic/value.h"
#include "platform/calendar/store.h"
#include "platform/outlook/constants.h"

#include <memory>

namespace platform::outlook {

class AppointmentItem;
class MailItem;

/// `UserProperties.Find` returns nullptr when there is none. `Add` of a present name returns that property.
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
/// olSave) hands them to the store; a failing `Save` keeps them. Times are on the user's wall clock.
class AppointmentItem : public std::enable_shared_from_this<AppointmentItem> {
 public:
  AppointmentItem(std::shared_ptr<calendar::Store> store, QString folder, calendar::Item item);

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
  /// The text as it was set, a leading separator included; of another program's categories the names joined by the
  /// list separator and a blank.
  QString Categories() const;
  void setCategories(const QString& text);
  QString BillingInformation() const;
  void setBillingInformation(const QString& text);
  QString MessageClass() const;
  /// The series' master for an occurrence; Failure errNotFound when the master is gone, nullptr for the others,
  /// whose parent is the folder.
  std::shared_ptr<AppointmentItem> Parent() const;
  /// Only for a meeting request: the appointment it made. nullptr when there is none.
  std::shared_ptr<AppointmentItem> GetAssociatedAppointment(bool addToCalendar) const;
  UserProperties userProperties() { return UserProperties(*this); }
  void Save();
  void Close(int saveMode);
  /// A mail with the appointment as a vCalendar for its first attachment.
  std::shared_ptr<MailItem> ForwardAsVcal() const;

  /// Its zone is defined nowhere; it is shown in the user's own.
  bool ZoneUnknown() const { return item_.zoneUnknown; }
  const calendar::Item& stored() const { return item_; }

 private:
  friend class UserProperty;
  friend class UserProperties;
  std::shared_ptr<calendar::Store> store_;
  QString folder_;
  calendar::Item item_;
  calendar::Change change_;
};

/// The items of a folder. `Find` and `FindNext` walk the matches of a filter on `[Start]`; both ends of its range
/// may be written with or without "#". Dates in the filter are in the system's short date format.
class Items {
 public:
  Items(std::shared_ptr<calendar::Store> store, QString folder);
  int Count() const;
  std::shared_ptr<AppointmentItem> Item(int position) const;          // from 1; Failure when outside
  std::shared_ptr<AppointmentItem> Item(const QString& subject) const;  // first of that subject, or errNotFound
  void Sort(const QString& property);  // "[Start]"
  void setIncludeRecurrences(bool on) { includeRecurrences_ = on; }
  /// nullptr when nothing matches; Failure when the filter cannot be read.
  std::shared_ptr<AppointmentItem> Find(const QString& filter);
  std::shared_ptr<AppointmentItem> FindNext();

 private:
  std::shared_ptr<calendar::Store> store_;
  QString folder_;
  bool includeRecurrences_ = false;
  QList<calendar::Item> found_;
  qsizetype next_ = 0;
};

class Attachment {
 public:
  explicit Attachment(QByteArray content) : content_(std::move(content)) {}
  void SaveAsFile(const QString& path) const;

 private:
  QByteArray content_;
};

/// A mail that the user sees and sends himself: `Save` keeps it as a draft file, `Display` opens the desktop's mail
/// program with it.
class MailItem {
 public:
  QString To, Subject, Body;
  std::vector<Attachment> Attachments;  // Attachments(1) of the object model is [0]
  void Save();
  void Display();
};

}  // namespace platform::outlook
