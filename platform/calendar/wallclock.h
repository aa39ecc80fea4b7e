#pragma once
#include <QDateTime>
#include <QTimeZone>

namespace platform::calendar {

/// Which of the two moments is meant when the clocks are set back and a wall-clock time comes twice.
enum class Twice { First, Second };

/// The moment at which the clocks of a zone show a date and time, in that zone. A time that the clocks jump
/// over is taken with the offset from before the jump: 02:30 of a night that goes from 02:00 to 03:00 is
/// 03:30. (QDateTime itself calls such a time invalid and converts it wrongly.)
QDateTime instantAt(const QDate& day, const QTime& time, const QTimeZone& zone, Twice twice = Twice::First);

}  // namespace platform::calendar
