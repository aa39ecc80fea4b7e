#pragma once
#include "platform/forms/controls.h"

#include <QWidget>

class QAbstractSlider;
class QCheckBox;
class QComboBox;
class QDateEdit;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QSpinBox;
class QTabBar;

// Each function makes a widget follow a control, and hands what the user does in the widget back to it. The
// widget gets the control's name as its object name, its tooltip, and an accessible name: `accessibleName`
// when given, otherwise the control's own, otherwise the caption without mnemonic, otherwise the tooltip;
// without any of them the tool kit's own rule stays in force (the text of the label whose buddy the widget
// is).
//
// What code does to the control is shown without coming back as an event; what the user does arrives as the
// control's event, inside process::guardEvent. Control and widget may be destroyed in either order. A place
// and size in twips is carried over in both directions, as long as no layout owns the widget in the direction
// towards it.
//
// A caption is written to the widget once for each change of it: a form may give the text another mnemonic.
// "&" in the captions of labels, buttons, boxes and frames marks the mnemonic, "&&" is the character. A label
// shows its mnemonic when its buddy is set before it is bound. Tabs and list entries show "&" as it stands.
namespace platform::forms {

void bind(Label& control, QLabel* widget, const QString& accessibleName = {});
void bind(Frame& control, QGroupBox* widget, const QString& accessibleName = {});
void bind(CommandButton& control, QPushButton* widget, const QString& accessibleName = {});
void bind(CheckBox& control, QCheckBox* widget, const QString& accessibleName = {});
void bind(OptionButton& control, QRadioButton* widget, const QString& accessibleName = {});
void bind(TextBox& control, QLineEdit* widget, const QString& accessibleName = {});
/// Editable or not follows from the control's style. The mouse wheel turns the choice only while the box has
/// the focus, so that scrolling past it changes nothing.
void bind(ComboBox& control, QComboBox* widget, const QString& accessibleName = {});
/// `Min` and `Max` are read again whenever the control changes; they stand before the user can reach the bar.
void bind(ScrollBar& control, QAbstractSlider* widget, const QString& accessibleName = {});
void bind(ScrollBar& control, QSpinBox* widget, const QString& accessibleName = {});
void bind(TabStrip& control, QTabBar* widget, const QString& accessibleName = {});
/// A calendar with week numbers drops down; the date stands in the short date pattern of platform/locale. A
/// day that the user chooses leaves the time of day of `Value` as it is.
void bind(DTPicker& control, QDateEdit* widget, const QString& accessibleName = {});

/// For the widget of a component that a form only gives a place and a visibility: name, visibility, place and
/// size, tooltip; an accessible name only when one is given.
void bindExtender(Control& control, QWidget* widget, const QString& accessibleName = {});

/// The text without its mnemonic: "&Print" gives "Print", "R&&D" gives "R&D".
QString withoutMnemonic(const QString& caption);

}  // namespace platform::forms
