#include "reports/pdf_writer.h"

#include <hpdf.h>

#include <cstdint>
#include <cstdio>
#include <memory>

#include "ground/lw_error.h"

namespace lotwise {

namespace {

// The characters of Windows code page 1252 between 0x80 and 0x9F, which the
// base-14 fonts' WinAnsi encoding prints; 0 marks an unused code.
constexpr char32_t kWinAnsiHigh[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

char ToWinAnsi(char32_t code) {
  if (code == '\t' || code == '\n' || code == '\r') return ' ';
  if (code < 0x20 || code == 0x7F) return '?';
  if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) return static_cast<char>(code);
  for (int i = 0; i < 32; ++i) {
    if (kWinAnsiHigh[i] == code) return static_cast<char>(0x80 + i);
  }
  return '?';
}

// Converts UTF-8 to WinAnsi bytes. A byte that does not start a valid UTF-8
// sequence is read as Latin-1, the likeliest source of such text.
std::string Utf8ToWinAnsi(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  size_t i = 0;
  while (i < text.size()) {
    auto byte = static_cast<unsigned char>(text[i]);
    size_t extra = byte >= 0xF0 && byte < 0xF5   ? 3
                   : byte >= 0xE0 && byte < 0xF0 ? 2
                   : byte >= 0xC2 && byte < 0xE0 ? 1
                                                 : 0;
    char32_t code = byte & (0x3F >> extra);
    bool valid = extra > 0 && i + extra < text.size();
    for (size_t k = 1; valid && k <= extra; ++k) {
      auto next = static_cast<unsigned char>(text[i + k]);
      valid = (next & 0xC0) == 0x80;
      code = (code << 6) | (next & 0x3F);
    }
    if (valid) {
      out += ToWinAnsi(code);
      i += extra + 1;
    } else {
      out += ToWinAnsi(byte);
      ++i;
    }
  }
  return out;
}

// Haru reports errors through a callback; the first one is kept and the
// writer stops at the next check.
struct HaruErrors {
  HPDF_STATUS first = HPDF_OK;
  HPDF_STATUS detail = 0;
};

void OnHaruError(HPDF_STATUS error_no, HPDF_STATUS detail_no, void* user_data) {
  auto* errors = static_cast<HaruErrors*>(user_data);
  if (errors->first == HPDF_OK) {
    errors->first = error_no;
    errors->detail = detail_no;
  }
}

struct DocDeleter {
  void operator()(HPDF_Doc doc) const { HPDF_Free(doc); }
};
using DocPtr = std::unique_ptr<std::remove_pointer_t<HPDF_Doc>, DocDeleter>;

// One Haru document kept for measuring text: fonts need a document.
struct Measurer {
  HaruErrors errors;
  DocPtr doc;
  HPDF_Font regular = nullptr;
  HPDF_Font bold = nullptr;

  Measurer() : doc(HPDF_New(OnHaruError, &errors)) {
    if (!doc) throw LwError(err::kOutOfMemory, "Out of memory");
    regular = HPDF_GetFont(doc.get(), "Helvetica", "WinAnsiEncoding");
    bold = HPDF_GetFont(doc.get(), "Helvetica-Bold", "WinAnsiEncoding");
    if (!regular || !bold) throw LwError(err::kUnexpected, "The PDF fonts are not available");
  }
};

void ThrowIfFailed(const HaruErrors& errors) {
  if (errors.first == HPDF_OK) return;
  char buf[64];
  std::snprintf(buf, sizeof buf, "PDF error 0x%04X (detail %u)",
                static_cast<unsigned>(errors.first), static_cast<unsigned>(errors.detail));
  throw LwError(err::kUnexpected, buf);
}

}  // namespace

double MeasureText(std::string_view text, bool bold, double size) {
  static Measurer measurer;
  std::string bytes = Utf8ToWinAnsi(text);
  if (bytes.empty()) return 0;
  HPDF_TextWidth width = HPDF_Font_TextWidth(bold ? measurer.bold : measurer.regular,
                                             reinterpret_cast<const HPDF_BYTE*>(bytes.data()),
                                             static_cast<HPDF_UINT>(bytes.size()));
  return static_cast<double>(width.width) * size / 1000.0;
}

void WriteReportPdf(const std::vector<ReportDocument>& documents, const std::string& path) {
  HaruErrors errors;
  DocPtr doc(HPDF_New(OnHaruError, &errors));
  if (!doc) throw LwError(err::kOutOfMemory, "Out of memory");
  HPDF_Doc pdf = doc.get();
  HPDF_SetCompressionMode(pdf, HPDF_COMP_ALL);
  if (!documents.empty()) {
    HPDF_SetInfoAttr(pdf, HPDF_INFO_TITLE, Utf8ToWinAnsi(documents.front().title).c_str());
  }
  HPDF_SetInfoAttr(pdf, HPDF_INFO_CREATOR, "Lotwise");
  HPDF_Font regular = HPDF_GetFont(pdf, "Helvetica", "WinAnsiEncoding");
  HPDF_Font bold = HPDF_GetFont(pdf, "Helvetica-Bold", "WinAnsiEncoding");
  ThrowIfFailed(errors);

  for (const ReportDocument& document : documents) {
    for (const ReportPage& source : document.pages) {
      HPDF_Page page = HPDF_AddPage(pdf);
      HPDF_Page_SetWidth(page, static_cast<HPDF_REAL>(document.page_width));
      HPDF_Page_SetHeight(page, static_cast<HPDF_REAL>(document.page_height));
      // The document measures from the top; PDF from the bottom.
      auto pdf_y = [&](double y) { return static_cast<HPDF_REAL>(document.page_height - y); };
      for (const ReportRule& rule : source.rules) {
        HPDF_Page_SetLineWidth(page, static_cast<HPDF_REAL>(rule.thickness));
        HPDF_Page_MoveTo(page, static_cast<HPDF_REAL>(rule.x1), pdf_y(rule.y1));
        HPDF_Page_LineTo(page, static_cast<HPDF_REAL>(rule.x2), pdf_y(rule.y2));
        HPDF_Page_Stroke(page);
      }
      HPDF_Page_BeginText(page);
      for (const ReportText& text : source.texts) {
        std::string bytes = Utf8ToWinAnsi(text.text);
        if (bytes.empty()) continue;
        HPDF_Page_SetFontAndSize(page, text.bold ? bold : regular,
                                 static_cast<HPDF_REAL>(text.size));
        double x = text.x;
        if (text.align != ReportText::Align::kLeft) {
          double width = HPDF_Page_TextWidth(page, bytes.c_str());
          x += text.align == ReportText::Align::kRight ? text.width - width
                                                       : (text.width - width) / 2;
        }
        HPDF_Page_TextOut(page, static_cast<HPDF_REAL>(x), pdf_y(text.y), bytes.c_str());
      }
      HPDF_Page_EndText(page);
      ThrowIfFailed(errors);
    }
  }

  if (HPDF_SaveToFile(pdf, path.c_str()) != HPDF_OK) {
    throw LwError(err::kPathFileAccess, "Path/File access error");
  }
}

}  // namespace lotwise
