// SPDX-License-Identifier: Apache-2.0
#include "exiv2_reader.h"

#include "lumo/foundation/log.h"
#include "metadata_bytes.h"

#include <QFile>
#include <exiv2/exiv2.hpp>

#include <algorithm>
#include <limits>
#include <mutex>
#include <optional>

namespace lumo::exif {
namespace {

constexpr long kMaxTagBytes = 128L * 1024L;
constexpr std::size_t kMaxNumbers = 16;

void logMessage(int, const char* message)
{
    log::debug() << "exiv2:" << QString::fromLocal8Bit(message).simplified();
}

/// exiv2 decodes XMP with process-wide tables of namespaces, and does not keep
/// threads apart there, not even with the lock that it can be given: files that
/// bind one prefix to different addresses disturb each other. So files with XMP are
/// read one at a time, and the tables are emptied after each (a prefix that is bound
/// anew leaks the old entry).
class XmpSession
{
public:
    XmpSession()
        : m_lock(mutex())
    {}
    XmpSession(const XmpSession&) = delete;
    XmpSession& operator=(const XmpSession&) = delete;
    ~XmpSession() { Exiv2::XmpProperties::unregisterNs(); }

private:
    static std::mutex& mutex()
    {
        static std::mutex mutex;
        return mutex;
    }

    std::lock_guard<std::mutex> m_lock;
};

template <typename Pair>
double quotient(const Pair& rational)
{
    return rational.second == 0
               ? std::numeric_limits<double>::quiet_NaN()
               : static_cast<double>(rational.first) / static_cast<double>(rational.second);
}

/// Not by Value::toFloat: that is single precision, and unsigned rationals
/// above 2^31 would come out negative.
double numberAt(const Exiv2::Value& value, std::size_t i)
{
    if (const auto* rationals = dynamic_cast<const Exiv2::URationalValue*>(&value)) {
        return quotient(rationals->value_.at(i));
    }
    if (const auto* rationals = dynamic_cast<const Exiv2::RationalValue*>(&value)) {
        return quotient(rationals->value_.at(i));
    }
    if (const auto* doubles = dynamic_cast<const Exiv2::DoubleValue*>(&value)) {
        return doubles->value_.at(i);
    }
    if (const auto* floats = dynamic_cast<const Exiv2::FloatValue*>(&value)) {
        return static_cast<double>(floats->value_.at(i));
    }
    return static_cast<double>(value.toLong(static_cast<long>(i)));
}

QByteArray bytesOf(const Exiv2::Value& value)
{
    QByteArray bytes(static_cast<int>(value.size()), '\0');
    value.copy(reinterpret_cast<Exiv2::byte*>(bytes.data()), Exiv2::invalidByteOrder);
    return bytes;
}

TagValue tagValue(const Exiv2::Value& value)
{
    TagValue result;
    switch (value.typeId()) {
    case Exiv2::asciiString:
        result.bytes = bytesOf(value);
        return result;
    case Exiv2::undefined:
    case Exiv2::unsignedByte:
        result.bytes = bytesOf(value);
        break;
    default:
        break;
    }
    const std::size_t count =
        std::min(static_cast<std::size_t>(std::max(value.count(), 0L)), kMaxNumbers);
    for (std::size_t i = 0; i < count; ++i) {
        result.numbers.push_back(numberAt(value, i));
    }
    return result;
}

RawMetadata collect(const Exiv2::Image& image)
{
    RawMetadata raw;
    for (const Exiv2::Exifdatum& datum : image.exifData()) {
        if (datum.size() > 0 && datum.size() <= kMaxTagBytes) {
            raw.tags.emplace(datum.key(), tagValue(datum.value()));
        }
    }
    // As it stands in the file, unlike Image::xmpPacket(), which writes what was decoded.
    raw.xmpPacket = QByteArray::fromStdString(image.xmpData().xmpPacket());
    raw.pixelWidth = static_cast<std::size_t>(std::max(image.pixelWidth(), 0));
    raw.pixelHeight = static_cast<std::size_t>(std::max(image.pixelHeight(), 0));
    return raw;
}

/// \param recognised  whether the format was known when it failed: files shorter
///     than the marks of all formats fail before
QString reason(const Exiv2::Error& failure, bool recognised)
{
    switch (failure.code()) {
    case Exiv2::kerFileContainsUnknownImageType:
    case Exiv2::kerMemoryContainsUnknownImageType:
    case Exiv2::kerUnsupportedImageType:
        return QStringLiteral("not an image of a known format");
    case Exiv2::kerFailedToReadImageData:
    case Exiv2::kerInputDataReadFailed:
    case Exiv2::kerNoImageInInputData:
    case Exiv2::kerNotAnImage:
    case Exiv2::kerNotAJpeg:
    case Exiv2::kerCorruptedMetadata:
    case Exiv2::kerOffsetOutOfRange:
    case Exiv2::kerArithmeticOverflow:
        return recognised ? QStringLiteral("truncated or damaged")
                          : QStringLiteral("not an image of a known format");
    default:
        return QStringLiteral("unreadable metadata (%1)")
            .arg(QString::fromLocal8Bit(failure.what()).simplified());
    }
}

/// \param io  a BasicIo of our own: given a text, exiv2 would also open URLs and pipes
bool readWithExiv2(Exiv2::BasicIo::AutoPtr io, RawMetadata& raw, QString& error)
{
    static const bool handled = [] {
        Exiv2::LogMsg::setHandler(logMessage);
        return true;
    }();
    static_cast<void>(handled);
    bool recognised = false;
    try {
        const Exiv2::Image::AutoPtr image = Exiv2::ImageFactory::open(io);
        if (image.get() == nullptr) {
            error = QStringLiteral("not an image of a known format");
            return false;
        }
        recognised = true;
        image->readMetadata();
        raw = collect(*image);
        return true;
    } catch (const Exiv2::Error& failure) {
        error = reason(failure, recognised);
    } catch (const std::exception& failure) {
        error = QStringLiteral("unreadable metadata (%1)")
                    .arg(QString::fromLocal8Bit(failure.what()).simplified());
    }
    return false;
}

} // namespace

bool readRawMetadata(QFile& file, RawMetadata& raw, QString& error)
{
    const std::optional<MetadataBytes> bytes = takeOutXmp(file);
    if (!bytes) {
        const XmpSession session;
        Exiv2::BasicIo::AutoPtr io(
            new Exiv2::FileIo(QFile::encodeName(file.fileName()).toStdString()));
        return readWithExiv2(io, raw, error);
    }
    // MemIo refers to the bytes, which are only read.
    Exiv2::BasicIo::AutoPtr io(new Exiv2::MemIo(bytes->data, static_cast<long>(bytes->size)));
    if (!readWithExiv2(io, raw, error)) {
        return false;
    }
    raw.xmpPacket = bytes->xmpPacket;
    return true;
}

} // namespace lumo::exif
