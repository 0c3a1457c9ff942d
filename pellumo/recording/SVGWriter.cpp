#include "pellumo/recording/SVGWriter.h"

#include "pellumo/recording/FramePicture.h"
#include "pellumo/recording/SVGText.h"

#include <algorithm>
#include <ostream>

namespace Pellumo {

namespace {

constexpr std::int64_t HeadHeight = 740;
constexpr std::int64_t MinimumWidth = 9000;

constexpr std::string_view Style = R"svg(<style>
text{font:11.5px system-ui,-apple-system,"Segoe UI","DejaVu Sans",sans-serif;fill:#1f2328}
.page{fill:#fff}
.headline{font-size:18px;font-weight:600}
.title{font-size:13.5px;font-weight:600}
.name{font-size:9.5px;text-anchor:middle;fill:#57606a}
.value{font:600 12.5px ui-monospace,"SF Mono",Menlo,"DejaVu Sans Mono",monospace;text-anchor:middle}
.fact,.unit,.number{fill:#57606a}
.unit,.number{font-size:9.5px}
.unit{text-anchor:end}
.number{text-anchor:middle;font-variant-numeric:tabular-nums}
.fault{fill:#c4122f;font-weight:600}
.commander,.slave{stroke:#fff}
.commander{fill:#ddf0ff}
.slave{fill:#fff0d9}
.commander-band{fill:#2f78c4}
.slave-band{fill:url(#hatch)}
#hatch rect{fill:#fff0d9}
#hatch path{stroke:#a85b00;stroke-width:2.4}
.faulty{fill:none;stroke:#c4122f;stroke-width:1.6;stroke-dasharray:4 2}
.commander-level,.slave-level,.idle-level,.driven,.axis,.sampling,.cross{fill:none}
.commander-level{stroke:#0b4f9e;stroke-width:1.5}
.slave-level{stroke:#8a4500;stroke-width:2.4}
.idle-level{stroke:#8c959f;stroke-width:1.5}
.driven{stroke:#c4122f;stroke-width:1.4;stroke-dasharray:2.5 2}
.cross{stroke:#c4122f;stroke-width:2.4}
.axis,.sampling{stroke:#8c959f}
.ticks{stroke-width:5;stroke-dasharray:.8 5.6}
.marks{stroke-width:10;stroke-dasharray:1.2 62.8}
@media (prefers-color-scheme:dark){
text{fill:#e6edf3}
.page{fill:#0d1117}
.name,.fact,.unit,.number{fill:#9aa4af}
.fault{fill:#ff8078}
.commander,.slave{stroke:#0d1117}
.commander{fill:#12263f}
.slave,#hatch rect{fill:#38260f}
.commander-band{fill:#4a90d9}
#hatch path{stroke:#f0a04b}
.faulty,.cross,.driven{stroke:#ff8078}
.commander-level{stroke:#7cb8ff}
.slave-level{stroke:#ffb86b}
.axis,.sampling,.idle-level{stroke:#7d8590}
}
</style>
<defs><pattern id="hatch" width="5" height="5" patternUnits="userSpaceOnUse" patternTransform="rotate(45)"><rect width="5" height="5"/><path d="M1.2 0V5"/></pattern></defs>
)svg";

constexpr std::string_view Legend =
    R"svg(<rect class="commander" x="16" y="40" width="22" height="14"/><rect class="commander-band" x="16" y="40" width="22" height="4"/><text x="44" y="51">sent by the commander</text>
<rect class="slave" x="196" y="40" width="22" height="14"/><rect class="slave-band" x="196" y="40" width="22" height="4"/><text x="224" y="51">answered by a slave</text>
<path class="sampling" d="M366 45v6m6-6v6m6-6v6"/><text x="386" y="51">samples that judged a bit</text>
<rect class="faulty" x="548" y="40" width="22" height="14"/><text x="576" y="51">fault</text>
<path class="driven" d="M628 47h22"/><text x="656" y="51">driven, where the bus did not follow</text>
)svg";

} // namespace

SVGWriter::SVGWriter(std::ostream& Out, std::string_view Title)
    : Out_(Out), Title_(EscapeXML(Title)), Decoder_([this](const BusEvent& Event) { AddRow(Event); }),
      Width_(MinimumWidth)
{
}

SVGWriter::~SVGWriter()
{
    try {
        Finish();
    } catch (...) { // NOLINT(bugprone-empty-catch): a destructor cannot tell; the state of the output stream does
    }
}

void SVGWriter::OnStream(const SampleStream& Stream)
{
    if (!Finished_) {
        Decoder_.OnStream(Stream);
    }
}

void SVGWriter::AddRow(const BusEvent& Event)
{
    if (Event.Kind == BusEventKind::Wait || Event.Kind == BusEventKind::Other) {
        return;
    }
    const FramePicture Picture = DrawFrame(Event);
    Rows_.append("<g transform=\"translate(0 ").append(Tenths(HeadHeight + Height_)).append(")\">\n");
    Rows_.append(Picture.Markup).append("</g>\n");
    Height_ += FramePicture::Height;
    Width_ = std::max(Width_, Picture.Width);
}

void SVGWriter::Finish()
{
    if (Finished_) {
        return;
    }
    Finished_ = true;
    const std::string Width = Tenths(Width_);
    const std::string Height = Tenths(HeadHeight + Height_);
    Out_ << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         << "<svg xmlns=\"http://www.w3.org/2000/svg\" role=\"img\" width=\"" << Width << "\" height=\"" << Height
         << "\" viewBox=\"0 0 " << Width << ' ' << Height << "\">\n"
         << "<title>" << Title_ << "</title>\n"
         << Style << "<rect class=\"page\" width=\"" << Width << "\" height=\"" << Height << "\"/>\n"
         << "<text class=\"headline\" x=\"16\" y=\"26\">" << Title_ << "</text>\n"
         << Legend << Rows_ << "</svg>\n";
    Out_.flush();
    Rows_.clear();
}

} // namespace Pellumo
