#pragma once
#include "platform/owc/charttypes.h"
#include "platform/owc/generation.h"

#include <QObject>
#include <QSize>
#include <QStringList>

#include <functional>
#include <memory>
#include <variant>
#include <vector>

namespace platform::owc {

// Dimensions and data source of `SetData`.
inline constexpr int chDimSeriesNames = 0;
inline constexpr int chDimCategories = 1;
inline constexpr int chDimValues = 2;
inline constexpr int chDataLiteral = -1;

/// White, in blue-green-red order. A view shows it as the desktop's own background.
inline constexpr qint32 chartWhite = 0xFFFFFF;

/// Names and categories are a text or a list of texts, values a list of numbers; a number that is no number
/// (NaN, infinite) stands for a missing value.
using ChartData = std::variant<QString, QStringList, QList<double>>;

class Chart;
class ChartSpace;

class ChartInterior {
 public:
  explicit ChartInterior(std::function<void()> changed) : changed_(std::move(changed)) {}
  qint32 Color() const { return color_; }
  void setColor(qint32 color);

 private:
  std::function<void()> changed_;
  qint32 color_ = chartWhite;
};

/// A weight of 0 is no border. Weights are in pixels.
class ChartBorder {
 public:
  explicit ChartBorder(std::function<void()> changed) : changed_(std::move(changed)) {}
  qint32 Color() const { return color_; }
  void setColor(qint32 color);
  int Weight() const { return weight_; }
  void setWeight(int weight);

 private:
  std::function<void()> changed_;
  qint32 color_ = 0;
  int weight_ = 1;
};

/// A series of a chart; a light handle that must not outlive its chart.
class Series {
 public:
  Series(Chart& chart, qsizetype index) : chart_(&chart), index_(index) {}
  QString Name() const;
  /// `dimension` must be the values, given as numbers; a wrong dimension or source is Failure 5, data of a
  /// wrong kind Failure 13.
  void SetData(int dimension, int dataSourceIndex, const ChartData& data);

 private:
  Chart* chart_;
  qsizetype index_;
};

/// A chart; it lives until its chart space is cleared or destroyed.
class Chart {
 public:
  explicit Chart(std::function<void()> changed);
  Chart(const Chart&) = delete;
  Chart& operator=(const Chart&) = delete;

  bool HasLegend() const { return hasLegend_; }
  void setHasLegend(bool on);
  ChartBorder& border() { return border_; }
  const ChartBorder& border() const { return border_; }
  ChartInterior& Interior() { return interior_; }
  const ChartInterior& Interior() const { return interior_; }
  /// One of the chChartType constants, clustered columns at first.
  int Type() const { return type_; }
  /// Failure 5 for a type that cannot be drawn; the old type then stays in force.
  void setType(int type);
  /// Names make the series: as many as there are names. Those that were there before keep their values.
  /// A wrong dimension or source is Failure 5, data of a wrong kind Failure 13.
  void SetData(int dimension, int dataSourceIndex, const ChartData& data);
  QList<Series> SeriesCollection();

  // for the view
  const QStringList& seriesNames() const { return names_; }
  const QStringList& categories() const { return categories_; }
  const QList<double>& values(qsizetype series) const { return values_[series]; }

 private:
  friend class Series;
  std::function<void()> changed_;
  bool hasLegend_ = false;
  ChartBorder border_;
  ChartInterior interior_;
  int type_ = chChartTypeColumnClustered;
  QStringList names_;
  QStringList categories_;
  QList<QList<double>> values_;  // by series
};

/// The charts of a chart space, counted from 0. There is room for one.
class Charts {
 public:
  explicit Charts(ChartSpace& space) : space_(&space) {}
  int Count() const;
  Chart& Add();  // Failure 5 when there is one already
  /// Failure 9 when there is no such chart.
  Chart& Item(int index) const;
  Chart& operator[](int index) const { return Item(index); }

 private:
  ChartSpace* space_;
};

/// Makes pictures of a chart space. Whoever can draw it fills this in.
class ChartPainter {
 public:
  virtual ~ChartPainter() = default;
  /// `filter` is "gif" or "png", in small letters.
  virtual QByteArray picture(const ChartSpace& space, const QString& filter, const QSize& pixels) const = 0;
};

/// `OWC.Chart`, `OWC10.Chartspace`, `OWC11.ChartSpace`: what is to be drawn, without a screen. A view follows
/// it through `changed`, and gives it the means to make pictures.
class ChartSpace : public QObject {
  Q_OBJECT
 public:
  explicit ChartSpace(Generation generation = Generation::Office2003, QObject* parent = nullptr);
  ~ChartSpace() override;
  Generation generation() const { return generation_; }

  /// No charts, and the interior is white again. Charts taken out of it before are gone.
  void Clear();
  ChartInterior& Interior() { return interior_; }
  const ChartInterior& Interior() const { return interior_; }
  owc::Charts Charts() { return owc::Charts(*this); }
  /// The picture's bytes. `filter` is "gif" or "png" in any case. Failure 5 for another filter or for a size
  /// outside of 1 to 10,000 pixels, 91 when no view draws the chart space.
  QByteArray GetPicture(const QString& filter, int width, int height) const;
  /// The same into a file, which is replaced. Failures as above, and 70, 76 or 75 when it cannot be written.
  void ExportPicture(const QString& path, const QString& filter, int width, int height) const;

  // for the view
  const Chart* firstChart() const { return charts_.empty() ? nullptr : charts_.front().get(); }
  /// `painter` must outlive the chart space, or be taken back with nullptr.
  void setPainter(const ChartPainter* painter) { painter_ = painter; }
  const ChartPainter* painter() const { return painter_; }

 Q_SIGNALS:
  /// Once for each change; a view draws when control is back in the event loop.
  void changed();

 private:
  friend class owc::Charts;
  Generation generation_;
  ChartInterior interior_;
  std::vector<std::unique_ptr<Chart>> charts_;
  const ChartPainter* painter_ = nullptr;
};

}  // namespace platform::owc
