#pragma once
#include "platform/basic/collection.h"
#include "platform/basic/value.h"
#include "platform/outlook/items.h"
#include "platform/owc/address.h"

#include <QHash>
#include <QPoint>

#include <memory>
#include <optional>

namespace hourbook {

/// Where the user is in the list, by appointments rather than by rows: what is selected, which row has the
/// drop-downs, what is in sight, and what stands in cells without being in the calendar (a text that was not
/// accepted, why a row was not reported). Made before the list is fetched again; as long as it lives, the
/// window takes no notice of what happens to the list.
class PlaceInList {
 public:
  PlaceInList();
  ~PlaceInList();
  PlaceInList(const PlaceInList&) = delete;
  PlaceInList& operator=(const PlaceInList&) = delete;

  /// After the fetch. An appointment that is gone takes the selection and its drop-downs along, or what is
  /// typed next would go to another one.
  void restore();

 private:
  using Appointment = std::shared_ptr<platform::outlook::AppointmentItem>;
  struct Leftover {
    Appointment of;
    int column;
    platform::basic::Value value;
  };
  void noteLeftovers();
  int rowInSight(const QPoint& scroll) const;

  void restoreLeftovers() const;
  void restoreSelection() const;
  void restoreScroll() const;
  void restoreDropDowns() const;
  std::optional<int> rowNow(const Appointment& appointment) const;
  std::optional<int> rowNow(int rowBefore) const;
  Appointment before(int row) const;

  platform::basic::Collection<Appointment> before_;
  QSet<QString> idsBefore_;
  QList<Leftover> leftovers_;
  platform::owc::CellRect selection_, active_;
  QPoint scroll_;
  int anchor_ = 0;  // the row that stays at its place of the screen; 0: none
  Appointment dropDownsOf_;
  // after the fetch
  QHash<QString, int> byId_;
  QHash<QString, QList<int>> byOccurrence_;  // wherever it stands
};

}  // namespace hourbook
