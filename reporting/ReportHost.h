#pragma once

namespace hourbook {

/// What reporting asks of the form that started it.
class ReportHost {
 public:
  virtual ~ReportHost() = default;
  /// Is the box of the week grid ticked now?
  virtual bool GridTicked() = 0;
};

}  // namespace hourbook
