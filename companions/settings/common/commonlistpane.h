#pragma once
#include "companions/settings/common/commonbuffer.h"
#include "companions/settings/common/problemlabel.h"

#include <QLineEdit>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QPushButton;
class QTableView;

namespace hourbook {

class TextFilter;
class ValuesModel;

/// One list: its captions and its values.
class CommonListPane : public QWidget {
  Q_OBJECT

 public:
  CommonListPane(CommonBuffer& buffer, int list, QWidget* parent = nullptr);

  /// Shows what the buffer holds now.
  void reload();
  /// Shows a problem at its field.
  void showProblem(const CommonProblem& problem);
  void focusProblem(const CommonProblem& problem);
  void clearProblems();
  /// The caption's problem hangs on those of the other lists, too.
  void checkCaption() { lblCaptionProblem->show(buffer_.captionProblem(list_)); }
  /// Something typed that is not in the buffer: a value that was not added, a cell that was not taken. Empty:
  /// nothing. The field has the focus then.
  QString leftOver();
  bool hasLeftOver() const;

 Q_SIGNALS:
  void edited();
  void captionEdited();

 private:
  void makeControls();
  void makeTable();
  void layOut();
  void reloadSortColumns();
  void connectCaptions();
  void connectValues();
  void connectTable();
  void forgetRefused();
  void checkNewName(const QString& text);
  void addTyped();
  void renameCurrent();
  void removeSelected();
  void paste();
  void sort();
  void takeSort(int column, Qt::SortOrder order);
  void filter(const QString& text);
  void select(int sourceRow, int column);
  void showCount();
  void tellRename(const QString& from);
  bool eventFilter(QObject* watched, QEvent* event) override;

  CommonBuffer& buffer_;
  int list_;
  QLineEdit* txtCaption;
  QLineEdit* txtCategoryCaption;
  QLineEdit* txtSuperCategoryCaption;
  ProblemLabel* lblCaptionProblem;
  ProblemLabel* lblCategoryProblem;
  ProblemLabel* lblSuperCategoryProblem;
  QLineEdit* txtNewValue;
  QPushButton* cmdAdd;
  ProblemLabel* lblNewProblem;
  QLineEdit* txtFilter;
  QComboBox* cmbSort;
  QCheckBox* chkSortDown;
  QTableView* tblValues;
  ProblemLabel* lblValuesProblem;
  QLabel* lblCount;
  QPushButton* cmdRename;
  QPushButton* cmdRemove;
  QPushButton* cmdPaste;
  ValuesModel* model_;
  TextFilter* shown_;
  QString refused_;  // the text of a cell that was not taken, with the reason
  bool told_ = false;
};

}  // namespace hourbook
