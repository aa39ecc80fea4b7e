#pragma once
#include <QLabel>

namespace hourbook {

/// The line under a field that tells what is wrong with it; it takes room only while it says something. The
/// field it belongs to carries the same text as its accessible description.
class ProblemLabel : public QLabel {
  Q_OBJECT

 public:
  enum class Kind { Problem, Note };

  explicit ProblemLabel(QWidget* field, QWidget* parent = nullptr);
  void show(const QString& text, Kind kind = Kind::Problem);
  void clear() { show(QString()); }
  QWidget* field() const { return field_; }

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void paintInColour();

  QWidget* field_;
  Kind kind_ = Kind::Problem;
};

/// A label's text as it is read aloud: without the mark of its mnemonic.
QString withoutMnemonic(const QString& text);

/// Gives a control its mnemonic label's text as accessible name, and its own name for tests and scripts.
void nameControl(QWidget* control, const QString& label, const QString& objectName);

}  // namespace hourbook
