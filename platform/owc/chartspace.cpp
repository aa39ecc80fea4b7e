#include "platform/owc/chartspace.h"

#include "platform/basic/failure.h"
#include "platform/files/atomicfile.h"

namespace platform::owc {

namespace {

[[noreturn]] void fail(qint32 number, const QString& description) {
  throw Failure(number, description, QStringLiteral("ChartSpace"));
}

void requireLiteral(int dataSourceIndex) {
  if (dataSourceIndex != chDataLiteral)
    fail(failure::invalidProcedureCall,
         QStringLiteral("The chart takes literal data (-1) only; there is no data source %1.")
             .arg(dataSourceIndex));
}

[[noreturn]] void refuseDimension(int dimension, const QString& allowed) {
  fail(failure::invalidProcedureCall,
       QStringLiteral("The data dimension %1 cannot be set here; %2 can.").arg(dimension).arg(allowed));
}

QStringList textsOf(const ChartData& data) {
  if (const auto* text = std::get_if<QString>(&data)) return {*text};
  if (const auto* texts = std::get_if<QStringList>(&data)) return *texts;
  fail(failure::typeMismatch, QStringLiteral("Names and categories of a chart are texts."));
}

}  // namespace

void ChartInterior::setColor(qint32 color) {
  if (color == color_) return;
  color_ = color;
  changed_();
}

void ChartBorder::setColor(qint32 color) {
  if (color == color_) return;
  color_ = color;
  changed_();
}

void ChartBorder::setWeight(int weight) {
  if (weight == weight_) return;
  weight_ = weight;
  changed_();
}

// Series

QString Series::Name() const {
  return chart_->names_.at(index_);
}

void Series::SetData(int dimension, int dataSourceIndex, const ChartData& data) {
  requireLiteral(dataSourceIndex);
  if (dimension != chDimValues) refuseDimension(dimension, QStringLiteral("the values (2)"));
  const auto* numbers = std::get_if<QList<double>>(&data);
  if (!numbers) fail(failure::typeMismatch, QStringLiteral("The values of a series are numbers."));
  if (index_ >= chart_->values_.size())
    fail(failure::subscriptOutOfRange, QStringLiteral("The chart has no such series any more."));
  chart_->values_[index_] = *numbers;
  chart_->changed_();
}

// Chart

Chart::Chart(std::function<void()> changed) : changed_(changed), border_(changed), interior_(changed) {}

void Chart::setHasLegend(bool on) {
  if (on == hasLegend_) return;
  hasLegend_ = on;
  changed_();
}

void Chart::setType(int type) {
  if (type == type_) return;
  if (!chartKind(type)) {
    const QString name = chartTypeName(type);
    fail(failure::invalidProcedureCall,
         name.isEmpty()
             ? QStringLiteral("There is no chart type %1.").arg(type)
             : QStringLiteral("The chart type %1 (%2) cannot be drawn.").arg(QString::number(type), name));
  }
  type_ = type;
  changed_();
}

void Chart::SetData(int dimension, int dataSourceIndex, const ChartData& data) {
  requireLiteral(dataSourceIndex);
  switch (dimension) {
    case chDimSeriesNames:
      names_ = textsOf(data);
      values_.resize(names_.size());
      break;
    case chDimCategories:
      categories_ = textsOf(data);
      break;
    default:
      refuseDimension(dimension, QStringLiteral("series names (0) and categories (1)"));
  }
  changed_();
}

QList<Series> Chart::SeriesCollection() {
  QList<Series> all;
  for (qsizetype i = 0; i < names_.size(); ++i) all.append(Series(*this, i));
  return all;
}

// Charts

int Charts::Count() const {
  return static_cast<int>(space_->charts_.size());
}

Chart& Charts::Add() {
  if (Count() > 0)
    fail(failure::invalidProcedureCall, QStringLiteral("A chart space has room for one chart."));
  space_->charts_.push_back(std::make_unique<Chart>([space = space_] { Q_EMIT space->changed(); }));
  Q_EMIT space_->changed();
  return *space_->charts_.back();
}

Chart& Charts::Item(int index) const {
  if (index < 0 || index >= Count())
    fail(failure::subscriptOutOfRange, QStringLiteral("There is no chart %1.").arg(index));
  return *space_->charts_[static_cast<std::size_t>(index)];
}

// ChartSpace

ChartSpace::ChartSpace(Generation generation, QObject* parent)
    : QObject(parent), generation_(generation), interior_([this] { Q_EMIT changed(); }) {}

ChartSpace::~ChartSpace() = default;

void ChartSpace::Clear() {
  charts_.clear();
  interior_.setColor(chartWhite);
  Q_EMIT changed();
}

QByteArray ChartSpace::GetPicture(const QString& filter, int width, int height) const {
  constexpr int largest = 10'000;
  const QString format = filter.toLower();
  if (format != QLatin1String("gif") && format != QLatin1String("png"))
    fail(failure::invalidProcedureCall,
         QStringLiteral("A picture of the chart can be \"gif\" or \"png\", not \"%1\".").arg(filter));
  if (width < 1 || height < 1 || width > largest || height > largest)
    fail(failure::invalidProcedureCall,
         QStringLiteral("A picture of the chart cannot have %1 by %2 pixels.").arg(width).arg(height));
  if (!painter_) fail(failure::objectNotSet, QStringLiteral("Nothing draws this chart."));
  return painter_->picture(*this, format, QSize(width, height));
}

void ChartSpace::ExportPicture(const QString& path, const QString& filter, int width, int height) const {
  constexpr qint32 pathFileAccess = 75;
  const files::WriteResult result = files::replaceFile(path, GetPicture(filter, width, height));
  if (result.outcome == files::Outcome::Written) return;
  fail(result.denied    ? failure::permissionDenied
       : result.missing ? failure::pathNotFound
                        : pathFileAccess,
       result.error);
}

}  // namespace platform::owc
