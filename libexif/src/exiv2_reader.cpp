// SPDX-License-Identifier: Apache-2.0
#include "exiv2_reader.h"

#include "lumo/foundation/log.h"
#include "metadata_bytes.h"
#include "tiff_limits.h"

#include <QFile>
#include <exiv2/exiv2.hpp>
#include <exiv2/webpimage.hpp>

#include <algorithm>
#include <array>
#include <limits>
#include <mutex>
#include <optional>

namespace lumo::exif {
namespace {

/// What exiv2 may read of one file beside TIFF structures: a file whose boxes or chunks
/// are read again and again is given up. Real files take 1 MiB, and WebP the picture.
constexpr long kMaxReadBytes = 64L * 1024L * 1024L;
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
        if (datum.size() > 0 && static_cast<std::size_t>(datum.size()) <= kMaxTagBytes) {
            raw.tags.emplace(datum.key(), tagValue(datum.value()));
        }
    }
    // As it stands in the file, unlike Image::xmpPacket(), which writes what was decoded.
    raw.xmpPacket = QByteArray::fromStdString(image.xmpData().xmpPacket());
    raw.pixelWidth = static_cast<std::size_t>(std::max(image.pixelWidth(), 0));
    raw.pixelHeight = static_cast<std::size_t>(std::max(image.pixelHeight(), 0));
    return raw;
}

/// Memory that counts what is read from it, and throws where it is too much.
class CountedIo : public Exiv2::MemIo
{
public:
    using MemIo::MemIo;
    using MemIo::read;
    using MemIo::seek;

    Exiv2::DataBuf read(long count) override
    {
        spend(count);
        return MemIo::read(count);
    }
    long read(Exiv2::byte* buffer, long count) override
    {
        spend(count);
        return MemIo::read(buffer, count);
    }
    int seek(long offset, Position position) override
    {
        spend(0);
        return MemIo::seek(offset, position);
    }
    int getb() override
    {
        spend(1);
        return MemIo::getb();
    }

private:
    void spend(long count)
    {
        constexpr long kCostOfCall = 64; // as copying so many bytes
        m_spent += std::max(count, kCostOfCall);
        if (m_spent > kMaxReadBytes) {
            throw Exiv2::Error(Exiv2::kerErrorMessage, "it asks for more than 64 MiB to be read");
        }
    }

    long m_spent = 0;
};

/// The still pictures that exiv2 reads EXIF from. Its readers of videos are not safe, and
/// it takes unknown sound files for videos.
bool isReadType(int type)
{
    using namespace Exiv2;
    constexpr std::array kTypes = {
        ImageType::jpeg, ImageType::exv,  ImageType::cr2, ImageType::crw, ImageType::mrw,
        ImageType::tiff, ImageType::webp, ImageType::rw2, ImageType::orf, ImageType::png,
        ImageType::pgf,  ImageType::raf,  ImageType::psd, ImageType::jp2, ImageType::bmff};
    return std::find(kTypes.begin(), kTypes.end(), type) != kTypes.end();
}

/// Pictures without EXIF, by exiv2's number.
QString withoutExif(int type)
{
    switch (type) {
    case Exiv2::ImageType::gif:
        return QStringLiteral("GIF");
    case Exiv2::ImageType::bmp:
        return QStringLiteral("BMP");
    case Exiv2::ImageType::tga:
        return QStringLiteral("TGA");
    case Exiv2::ImageType::eps:
        return QStringLiteral("EPS");
    default:
        return {};
    }
}

void setUpExiv2()
{
    static const bool done = [] {
        Exiv2::LogMsg::setHandler(logMessage);
        return Exiv2::enableBMFF(true);
    }();
    static_cast<void>(done);
}

/// Opens the image, if it is of a type that is read.
Exiv2::Image::AutoPtr openImage(Exiv2::BasicIo::AutoPtr io, QString& error)
{
    const int type = Exiv2::ImageFactory::getType(*io);
    if (!isReadType(type)) {
        const QString name = withoutExif(type);
        error = name.isEmpty() ? QStringLiteral("not an image of a known format")
                               : QStringLiteral("holds no EXIF data: %1 files have none").arg(name);
        return Exiv2::Image::AutoPtr();
    }
    Exiv2::Image::AutoPtr image = Exiv2::ImageFactory::open(io);
    if (image.get() == nullptr) {
        error = QStringLiteral("not an image of a known format");
    }
    return image;
}

/// In words of ours, for what is common.
QString reason(const Exiv2::Error& failure)
{
    switch (failure.code()) {
    case Exiv2::kerFailedToReadImageData:
    case Exiv2::kerInputDataReadFailed:
    case Exiv2::kerNoImageInInputData:
    case Exiv2::kerNotAnImage:
    case Exiv2::kerNotAJpeg:
    case Exiv2::kerNotACrwImage:
    case Exiv2::kerCorruptedMetadata:
    case Exiv2::kerOffsetOutOfRange:
    case Exiv2::kerArithmeticOverflow:
        return QStringLiteral("truncated or damaged");
    default:
        return QStringLiteral("unreadable metadata (%1)")
            .arg(QString::fromLocal8Bit(failure.what()).simplified());
    }
}

/// What `work` throws, in one line; none if it throws nothing.
template <typename Work>
std::optional<QString> failureOf(const Work& work)
{
    try {
        work();
        return std::nullopt;
    } catch (const Exiv2::Error& failure) {
        return reason(failure);
    } catch (const std::exception& failure) {
        return QStringLiteral("unreadable metadata (%1)")
            .arg(QString::fromLocal8Bit(failure.what()).simplified());
    }
}

/// Keeps the tags that exiv2 read before it gave up, with the reason in `raw.damage`.
bool readWithExiv2(Exiv2::BasicIo::AutoPtr io, RawMetadata& raw, QString& error)
{
    setUpExiv2();
    Exiv2::Image::AutoPtr image;
    const std::optional<QString> unopened = failureOf([&] { image = openImage(io, error); });
    if (image.get() == nullptr) {
        if (unopened) { // files shorter than the marks of all formats
            error = QStringLiteral("not an image of a known format");
        }
        return false;
    }
    const std::optional<QString> damage = failureOf([&] { image->readMetadata(); });
    std::optional<QString> failure = failureOf([&] { raw = collect(*image); });
    if (!failure && damage && raw.tags.empty()) {
        failure = damage;
    }
    error = failure.value_or(error);
    raw.damage = damage.value_or(QString());
    return !failure;
}

} // namespace

bool readRawMetadata(QFile& file, RawMetadata& raw, QString& error)
{
    MetadataBytes bytes;
    if (!prepareMetadata(file, bytes, error)) {
        return false;
    }
    // JPEG and TIFF are shown without XMP, and CRW has none.
    const bool isXmpTakenOut = bytes.kind == FileKind::Jpeg || bytes.kind == FileKind::Tiff;
    std::optional<XmpSession> session;
    if (!isXmpTakenOut && bytes.kind != FileKind::Crw) {
        session.emplace();
    }
    // CountedIo refers to the bytes, which are only read.
    Exiv2::BasicIo::AutoPtr io(new CountedIo(bytes.data, static_cast<long>(bytes.size)));
    RawMetadata result;
    if (!readWithExiv2(io, result, error)) {
        return false;
    }
    if (!bytes.damage.isEmpty()) {
        result.damage = bytes.damage;
        if (result.tags.empty()) {
            error = QStringLiteral("truncated or damaged");
            return false;
        }
    }
    if (isXmpTakenOut) {
        result.xmpPacket = bytes.xmpPacket;
    }
    result.thermalBlock = bytes.thermalBlock;
    raw = result;
    return true;
}

} // namespace lumo::exif
