#pragma once
#include "platform/basic/value.h"

#include <QObject>
#include <QStringList>

// The controls of a form as the product's code sees them: members, not pixels. A form's widgets follow them
// (platform/forms/widgets). As with the controls they stand in for, a change made by code raises the same
// event as the user's: setting `ListIndex` or a check box's `Value` clicks, setting `Text` changes.
//
// Order: the state is changed first, then the widget is told, then the event is raised. A handler may set the
// control again; the inner event comes first and the outer setter does nothing after its own. A handler may
// destroy the control. A value that a control cannot hold is Failure 380 and changes nothing.
namespace platform::forms {

class Control : public QObject {
  Q_OBJECT
 public:
  explicit Control(QString name, QObject* parent = nullptr);
  QString Name() const { return objectName(); }
  bool Visible() const { return visible_; }
  void setVisible(bool on);
  bool Enabled() const { return enabled_; }
  void setEnabled(bool on);
  QString ToolTipText() const { return tip_; }
  void setToolTipText(const QString& text);
  QString Caption() const { return caption_; }
  void setCaption(const QString& text);
  /// What a screen reader calls a control that has neither a caption nor a label of its own.
  QString AccessibleName() const { return accessibleName_; }
  void setAccessibleName(const QString& text);
  /// Blue-green-red order; -1 as long as nobody has set it.
  qint32 BackColor() const { return backColor_; }
  void setBackColor(qint32 color);
  /// Place and size in twips. A layout may own the control, then these are what the layout last gave it. Code
  /// that lays a control itself writes them through `place` or `setTop`, which the widget follows.
  int Left = 0, Top = 0, Width = 0, Height = 0;
  void place(int left, int top, int width, int height);
  void setTop(int top) { place(Left, top, Width, Height); }
  QString FontName;
  double FontSize = 0;

 Q_SIGNALS:
  void propertyChanged();  // for the widget that follows
  void placed();           // likewise

 private:
  bool visible_ = true, enabled_ = true;
  QString tip_, caption_, accessibleName_;
  qint32 backColor_ = -1;
};

class Label : public Control {
  Q_OBJECT
 public:
  using Control::Control;
};

class Frame : public Control {
  Q_OBJECT
 public:
  using Control::Control;
};

class CommandButton : public Control {
  Q_OBJECT
 public:
  using Control::Control;
  void click() { Q_EMIT Click(); }
 Q_SIGNALS:
  void Click();
};

class CheckBox : public Control {
  Q_OBJECT
 public:
  using Control::Control;
  int Value() const { return value_; }
  void setValue(int value);  // 0 or 1, others are Failure 380; raises Click when it changes
 Q_SIGNALS:
  void Click();

 private:
  int value_ = 0;
};

class TextBox : public Control {
  Q_OBJECT
 public:
  using Control::Control;
  QString Text() const { return text_; }
  void setText(const QString& text);  // raises Change when it differs
 Q_SIGNALS:
  void Change();

 private:
  QString text_;
};

class ScrollBar : public Control {
  Q_OBJECT
 public:
  using Control::Control;
  int Value() const { return value_; }
  void setValue(int value);  // kept within Min and Max; raises Change when it differs
  int Min = 0, Max = 32767;  // Min may be the greater one: the bar then runs the other way round
 Q_SIGNALS:
  void Change();

 private:
  int value_ = 0;
};

/// Drop-down. `DropdownList` takes no free text: setting `Text` to something that is not in the list (the
/// empty text included) is Failure 383. Texts are equal with regard to case.
class ComboBox : public Control {
  Q_OBJECT
 public:
  enum class Style { DropdownCombo, DropdownList };
  explicit ComboBox(QString name, Style style = Style::DropdownList, QObject* parent = nullptr);
  Style style() const { return style_; }
  void Clear();  // entries, text and choice, without an event
  void AddItem(const QString& text);
  int ListCount() const { return static_cast<int>(items_.size()); }
  QString List(int index) const;  // "" outside of the list
  int ListIndex() const { return index_; }
  void setListIndex(int index);  // -1 for none and no text; raises Click, also when the index stays the same
  QString Text() const { return text_; }
  void setText(const QString& text);  // raises Change when it differs; selects an equal entry without a click
 Q_SIGNALS:
  void Click();
  void Change();
  void listChanged();  // for the widget that follows

 private:
  Style style_;
  QStringList items_;
  int index_ = -1;
  QString text_;
};

class OptionButton : public Control {
  Q_OBJECT
 public:
  using Control::Control;
  bool Value() const { return value_; }
  void setValue(
      bool on);  // raises Click when it becomes true; the others of the same parent become false first
 Q_SIGNALS:
  void Click();

 private:
  bool value_ = false;
};

class TabStrip : public Control {
  Q_OBJECT
 public:
  using Control::Control;
  void Clear();
  void Add(const QString& caption);
  int Count() const { return static_cast<int>(tabs_.size()); }
  QString TabCaption(int index) const { return tabs_.value(index); }  // index from 0
  int Index() const { return index_; }  // of the selected tab; 0 as long as there is one, -1 without tabs
  void setIndex(int index);             // raises Click when it changes; Failure 380 for what is no tab
 Q_SIGNALS:
  void Click();
  void tabsChanged();

 private:
  QStringList tabs_;
  int index_ = -1;
};

/// `MSComCtl2.DTPicker`. Raises no event that a form handles.
class DTPicker : public Control {
  Q_OBJECT
 public:
  using Control::Control;
  basic::Date Value() const { return value_; }
  void setValue(const basic::Date& date);

 private:
  basic::Date value_;
};

/// Does not tick again while a handler of its own tick is still at work (a question it asks, say).
class Timer : public Control {
  Q_OBJECT
 public:
  explicit Timer(QString name, QObject* parent = nullptr);
  int Interval() const { return interval_; }  // milliseconds; 0 never fires
  void setInterval(int milliseconds);
  void setTimerEnabled(bool on);
  bool TimerEnabled() const { return on_; }
 Q_SIGNALS:
  void Tick();

 private:
  void timerEvent(QTimerEvent* event) override;
  void restart();
  int interval_ = 0;
  bool on_ = false;
  bool ticking_ = false;
  int id_ = 0;
};

}  // namespace platform::forms
