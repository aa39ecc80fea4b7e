#pragma once
#include "platform/basic/value.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <array>

namespace hourbook {

/// One value of a list, as it is edited.
struct CommonValue {
  QString name;
  QString category;
  QString superCategory;
  platform::basic::Currency rate;  // of an hour
  bool enabled = true;
  QString was = {};  // the name that it was read under; empty for a new one
  bool operator==(const CommonValue&) const = default;
};

struct CommonList {
  QString caption;  // empty: the list is out of use
  QString categoryCaption;
  QString superCategoryCaption;
  QList<CommonValue> values;
};

/// The row of `tblWFData` as far as the billing roads read it. Texts are trimmed.
struct BillingRow {
  bool present = false;  // there is a row
  QString serverName;    // the road: "" and "0" portal, "1" and "2" QuickBooks
  QString location;
  QString userId;
  QString password;
  platform::basic::Date lastSync;  // year before 1900: never
  bool operator==(const BillingRow&) const = default;
};

/// What all users share, as the database holds it.
struct CommonContent {
  qint32 costCarrier = 0;
  qint32 reportTo = 2;
  QString reportToValue;
  std::array<CommonList, 3> lists;
  bool departmentAsked = false;  // ADDepartment
  BillingRow billing;
};

/// Names of the parts in which two contents differ, for the user; empty when they are the same. The order of
/// values does not count.
QStringList differences(const CommonContent& a, const CommonContent& b);

enum class CommonField {
  CostCarrier,
  ReportTo,
  ReportToValue,
  Caption,
  CategoryCaption,
  SuperCategoryCaption,
  Values,
  BillingLocation,
  BillingUser,
  BillingPassword,
};

struct CommonProblem {
  CommonField field;
  int list = -1;  // 0 to 2 for those of a list
  int row = -1;   // in CommonList::values, for CommonField::Values
  QString text;
};

/// A stored value that is no longer in its list, so that its reports must go somewhere.
struct RemovedValue {
  int list = 0;
  QString name;
  QString renamedTo;  // the name that the user gave it; empty when it was removed
  bool operator==(const RemovedValue&) const = default;
};

/// The common settings being edited: a copy of what was read, and the copy that the user changes. It knows no
/// window and no database; nothing it does is written before somebody hands it to `writeCommonSettings`.
///
/// Edits that can be refused return the reason, for the user; an empty text means that they are done.
struct CommonBuffer {
  CommonContent stored;
  CommonContent edited;
  bool isNew = false;            // the database is yet to be made
  bool billingPossible = false;  // the database is of the kind that the billing roads read
  QString notWritable;           // why nothing may be changed; empty: it may
  QString place;                 // the database, as messages call it

  bool isChanged() const { return !differences(stored, edited).isEmpty(); }
  /// All of them, in the order of the sections. Names that were stored with a fault and left alone are none.
  QList<CommonProblem> problems() const;
  QList<RemovedValue> removedValues() const;

  QString addValue(int list, const QString& name);
  QString renameValue(int list, int row, const QString& name);
  QString setRate(int list, int row, const QString& text);
  QString setCategory(int list, int row, const QString& text);
  QString setSuperCategory(int list, int row, const QString& text);
  void setEnabled(int list, int row, bool enabled) { edited.lists[list].values[row].enabled = enabled; }
  void removeValues(int list, QList<int> rows);

  /// What keeps a name from being given to the value of the row (-1: to a new one). Empty: nothing.
  QString nameProblem(int list, int row, const QString& name) const;
  /// What is wrong with a caption; empty: nothing.
  QString captionProblem(int list) const;
  QString targetValueProblem() const;
  /// What reporting would still lack on the chosen billing road; saving is possible all the same.
  QString billingHint() const;
};

/// What is wrong with a text that goes into a column of so many characters; empty: nothing.
QString columnProblem(const QString& text, qsizetype size = 255);

inline constexpr qsizetype billingLocationSize = 100;
inline constexpr qsizetype billingTextSize = 20;

}  // namespace hourbook
