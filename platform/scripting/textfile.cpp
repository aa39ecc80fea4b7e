#include "platform/scripting/textfile.h"

#include "platform/scripting/failures.h"

#include <QStringDecoder>
#include <QStringEncoder>

namespace platform::scripting {

namespace {

constexpr qint64 largestText = 256LL * 1024 * 1024;
constexpr int mostAttempts = 10;

bool isUtf16(const QByteArray& bytes) {
  return bytes.startsWith("\xFF\xFE");
}

QByteArray encoded(const QString& text, Encoding encoding, bool withMark) {
  if (encoding == Encoding::Utf8) return text.toUtf8();
  QStringEncoder encoder(QStringConverter::Utf16LE,
                         withMark ? QStringConverter::Flag::WriteBom : QStringConverter::Flag::Default);
  return encoder(text);
}

class ReadingStream : public TextStream {
 public:
  explicit ReadingStream(QString path) : path_(std::move(path)) {
    const files::ReadResult read = files::readFile(path_, largestText);
    if (!read.ok) fail(numberOf(read.missing, read.denied), read.error);
    text_ = decodedText(read.bytes);
  }
  bool AtEndOfStream() const override { return text_.isEmpty(); }
  QString ReadAll() override {
    if (closed_) fail(failure::invalidProcedureCall, path_);
    if (text_.isEmpty()) fail(inputPastEnd, path_);
    return std::exchange(text_, {});
  }
  void Write(const QString&) override { fail(badFileMode, path_); }
  void Close() override {
    closed_ = true;
    text_.clear();
  }

 private:
  QString path_;
  QString text_;
  bool closed_ = false;
};

/// Collects what is written. Nothing of the file changes before Close.
class CollectingStream : public TextStream {
 public:
  explicit CollectingStream(QString path) : path_(std::move(path)) {}
  bool AtEndOfStream() const override { fail(badFileMode, path_); }
  QString ReadAll() override { fail(badFileMode, path_); }
  void Write(const QString& text) override {
    if (closed_) fail(failure::invalidProcedureCall, path_);
    text_ += text;
  }
  void Close() override {
    if (closed_) return;
    save();
    closed_ = true;  // only now: a failed Close may be tried again
  }

 protected:
  virtual void save() = 0;
  QString path_;
  QString text_;

 private:
  bool closed_ = false;
};

class WritingStream : public CollectingStream {
 public:
  WritingStream(const QString& path, std::optional<files::Fingerprint> expected, Encoding encoding)
      : CollectingStream(path), expected_(std::move(expected)), encoding_(encoding) {}

 protected:
  void save() override {
    const auto result = files::replaceFile(path_, encoded(text_, encoding_, true), expected_);
    if (result.outcome == files::Outcome::ChangedMeanwhile) fail(fileExists, path_);
    failUnlessWritten(result, path_);
  }

 private:
  std::optional<files::Fingerprint> expected_;
  Encoding encoding_;
};

class AppendingStream : public CollectingStream {
 public:
  using CollectingStream::CollectingStream;

 protected:
  void save() override {
    // What another program appends meanwhile stays: the text goes behind it.
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
      const files::ReadResult before = files::readFile(path_, largestText);
      if (!before.ok && !before.missing) fail(numberOf(false, before.denied), before.error);
      const Encoding encoding = isUtf16(before.bytes) ? Encoding::Utf16 : Encoding::Utf8;
      const QByteArray bytes = before.bytes + encoded(text_, encoding, false);
      const auto result = files::replaceFile(path_, bytes, before.fingerprint);
      if (result.outcome == files::Outcome::ChangedMeanwhile) continue;
      failUnlessWritten(result, path_);
      return;
    }
    fail(permissionDenied, path_);
  }
};

}  // namespace

QString decodedText(const QByteArray& bytes) {
  if (isUtf16(bytes)) {
    QStringDecoder decoder(QStringConverter::Utf16LE);
    return decoder(bytes);
  }
  QStringDecoder decoder(QStringConverter::Utf8);
  const QString text = decoder(bytes);
  return decoder.hasError() ? QString::fromLatin1(bytes) : text;
}

std::shared_ptr<TextStream> readingStream(const QString& path) {
  return std::make_shared<ReadingStream>(path);
}

std::shared_ptr<TextStream> writingStream(const QString& path,
                                          const std::optional<files::Fingerprint>& expected,
                                          Encoding encoding) {
  return std::make_shared<WritingStream>(path, expected, encoding);
}

std::shared_ptr<TextStream> appendingStream(const QString& path) {
  return std::make_shared<AppendingStream>(path);
}

}  // namespace platform::scripting
