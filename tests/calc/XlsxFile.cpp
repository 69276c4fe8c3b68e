#include "tests/calc/XlsxFile.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <sstream>
#include <stdexcept>
#include <zip.h>

#include "host/Address.h"

namespace quorin::fakes {
namespace {

constexpr const char* header = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>)";
constexpr const char* mainNamespace =
    R"(xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main")";
constexpr const char* documentRelations =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
constexpr const char* packageRelations =
    R"(xmlns="http://schemas.openxmlformats.org/package/2006/relationships")";
constexpr const char* drawings = "http://schemas.openxmlformats.org/drawingml/2006/";
constexpr const char* sheetTypes = "application/vnd.openxmlformats-officedocument.spreadsheetml.";
constexpr const char* bookType =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml";

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += c;
    }
  }
  return result;
}

struct ValueText {
  std::string type, content;
};

ValueText valueText(const host::CellValue& value) {
  std::ostringstream number;
  number.precision(17);
  if (const auto* real = std::get_if<double>(&value)) {
    number << *real;
    return {"", "<v>" + number.str() + "</v>"};
  }
  if (const auto* boolean = std::get_if<bool>(&value)) {
    return {" t=\"b\"", *boolean ? "<v>1</v>" : "<v>0</v>"};
  }
  if (const auto* text = std::get_if<std::string>(&value)) {
    return {" t=\"str\"", "<v>" + escaped(*text) + "</v>"};
  }
  if (const auto* error = std::get_if<host::CellError>(&value)) {
    return {" t=\"e\"", "<v>" + escaped(error->text) + "</v>"};
  }
  return {};
}

std::string formulaText(const CellDescription& cell) {
  std::string text = cell.formula;
  if (text.empty()) return {};
  std::string attributes;
  if (text.starts_with("{")) {
    text = text.substr(1, text.size() - 2);
    attributes = " t=\"array\" ref=\"" + cell.address + "\"";
  }
  return "<f" + attributes + ">" + escaped(text.substr(1)) + "</f>";
}

std::string cellText(const CellDescription& cell) {
  const std::string address = cell.address.substr(0, cell.address.find(':'));
  const ValueText value = valueText(cell.value);
  if (value.type == " t=\"str\"" && cell.formula.empty()) {
    return "<c r=\"" + address + "\" t=\"inlineStr\"><is><t xml:space=\"preserve\">" +
           escaped(std::get<std::string>(cell.value)) + "</t></is></c>";
  }
  return "<c r=\"" + address + "\"" + value.type + ">" + formulaText(cell) + value.content + "</c>";
}

// The rules' look is the first of the differential formats that stylesText() has.
std::string rulesText(const SheetDescription& sheet) {
  std::string text;
  int priority = 0;
  for (const ConditionDescription& rule : sheet.conditions) {
    std::string addresses = rule.addresses;
    std::replace(addresses.begin(), addresses.end(), ',', ' ');
    const bool compares = rule.kind == host::ConditionKind::cellValue;
    text += "<conditionalFormatting sqref=\"" + addresses + "\"><cfRule type=\"" +
            (compares ? "cellIs\" operator=\"greaterThan" : "expression") +
            "\" dxfId=\"0\" priority=\"" + std::to_string(++priority) + "\"><formula>" +
            escaped(rule.formula.substr(1)) + "</formula></cfRule></conditionalFormatting>";
  }
  return text;
}

std::string sheetText(const SheetDescription& sheet) {
  std::map<int, std::map<int, const CellDescription*>> rows;
  for (const CellDescription& cell : sheet.cells) {
    const host::Area area = host::parseA1Area(cell.address).value();
    rows[area.firstRow][area.firstColumn] = &cell;
  }
  std::string text = std::string(header) + "<worksheet " + mainNamespace + "><sheetData>";
  for (const auto& [number, cells] : rows) {
    text += "<row r=\"" + std::to_string(number) + "\">";
    for (const auto& [column, cell] : cells) text += cellText(*cell);
    text += "</row>";
  }
  return text + "</sheetData>" + rulesText(sheet) + "</worksheet>";
}

// A chart sheet: the sheet holds a drawing, the drawing a chart, the chart one empty series.
std::string chartSheetText() {
  return std::string(header) + "<chartsheet " + mainNamespace + " xmlns:r=\"" + documentRelations +
         "\"><sheetViews><sheetView workbookViewId=\"0\"/></sheetViews><drawing r:id=\"rId1\"/>"
         "</chartsheet>";
}

std::string chartDrawingText() {
  return std::string(header) + "<xdr:wsDr xmlns:xdr=\"" + drawings +
         "spreadsheetDrawing\" xmlns:a=\"" + drawings +
         "main\"><xdr:absoluteAnchor><xdr:pos x=\"0\" y=\"0\"/>"
         "<xdr:ext cx=\"9000000\" cy=\"6000000\"/><xdr:graphicFrame><xdr:nvGraphicFramePr>"
         "<xdr:cNvPr id=\"2\" name=\"Chart 1\"/><xdr:cNvGraphicFramePr/></xdr:nvGraphicFramePr>"
         "<xdr:xfrm><a:off x=\"0\" y=\"0\"/><a:ext cx=\"0\" cy=\"0\"/></xdr:xfrm><a:graphic>"
         "<a:graphicData uri=\"" +
         drawings + "chart\"><c:chart xmlns:c=\"" + drawings + "chart\" xmlns:r=\"" +
         documentRelations +
         "\" r:id=\"rId1\"/></a:graphicData></a:graphic>"
         "</xdr:graphicFrame><xdr:clientData/></xdr:absoluteAnchor></xdr:wsDr>";
}

std::string chartText() {
  return std::string(header) + "<c:chartSpace xmlns:c=\"" + drawings +
         "chart\"><c:chart><c:plotArea><c:barChart><c:barDir val=\"col\"/><c:ser><c:idx val=\"0\"/>"
         "<c:order val=\"0\"/></c:ser><c:axId val=\"1\"/><c:axId val=\"2\"/></c:barChart><c:catAx>"
         "<c:axId val=\"1\"/><c:crossAx val=\"2\"/></c:catAx><c:valAx><c:axId val=\"2\"/>"
         "<c:crossAx val=\"1\"/></c:valAx></c:plotArea></c:chart></c:chartSpace>";
}

std::string oneRelation(const std::string& kind, const std::string& target) {
  return std::string(header) + "<Relationships " + packageRelations +
         "><Relationship Id=\"rId1\" Type=\"" + documentRelations + "/" + kind + "\" Target=\"" +
         target + "\"/></Relationships>";
}

constexpr const char* stylesType =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.styles+xml";

// Plain cells, and one differential format: a light green fill.
std::string stylesText() {
  return std::string(header) + "<styleSheet " + mainNamespace +
         "><fonts count=\"1\"><font><sz val=\"11\"/><name val=\"Calibri\"/></font></fonts>"
         "<fills count=\"2\"><fill><patternFill patternType=\"none\"/></fill><fill><patternFill "
         "patternType=\"gray125\"/></fill></fills><borders count=\"1\"><border/></borders>"
         "<cellStyleXfs count=\"1\"><xf/></cellStyleXfs><cellXfs count=\"1\"><xf/></cellXfs>"
         "<dxfs count=\"1\"><dxf><fill><patternFill><bgColor rgb=\"FFCCFFCC\"/></patternFill>"
         "</fill></dxf></dxfs></styleSheet>";
}

class Archive {
 public:
  explicit Archive(const std::filesystem::path& file)
      : zip_(zip_open(file.c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr)) {
    if (zip_ == nullptr) throw std::runtime_error("cannot write " + file.string());
  }
  ~Archive() {
    if (zip_ != nullptr) zip_discard(zip_);
  }
  void add(const std::string& name, const std::string& content) {
    zip_source_t* source = zip_source_buffer(zip_, copyOf(content), content.size(), 1);
    if (zip_file_add(zip_, name.c_str(), source, ZIP_FL_ENC_UTF_8) < 0) {
      throw std::runtime_error("cannot add " + name);
    }
  }
  void close() {
    if (zip_close(zip_) != 0) throw std::runtime_error("cannot finish the archive");
    zip_ = nullptr;
  }

 private:
  static void* copyOf(const std::string& content) {  // freed by the library
    void* bytes = std::malloc(content.size());
    content.copy(static_cast<char*>(bytes), content.size());
    return bytes;
  }
  zip_t* zip_;
};

// The parts behind a chart sheet, and returns their content types.
std::string addChart(Archive& archive, const std::string& number) {
  archive.add("xl/chartsheets/_rels/sheet" + number + ".xml.rels",
              oneRelation("drawing", "../drawings/drawing" + number + ".xml"));
  archive.add("xl/drawings/drawing" + number + ".xml", chartDrawingText());
  archive.add("xl/drawings/_rels/drawing" + number + ".xml.rels",
              oneRelation("chart", "../charts/chart" + number + ".xml"));
  archive.add("xl/charts/chart" + number + ".xml", chartText());
  const std::string office = "ContentType=\"application/vnd.openxmlformats-officedocument.";
  return "<Override PartName=\"/xl/drawings/drawing" + number + ".xml\" " + office +
         "drawing+xml\"/><Override PartName=\"/xl/charts/chart" + number + ".xml\" " + office +
         "drawingml.chart+xml\"/>";
}

}  // namespace

void writeXlsx(const WorkbookDescription& workbook, const std::filesystem::path& file) {
  std::string sheets, relations, types, names;
  Archive archive(file);
  for (std::size_t i = 0; i < workbook.sheets.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    const std::string state = workbook.sheets[i].hidden ? "\" state=\"hidden" : "";
    sheets += "<sheet name=\"" + escaped(workbook.sheets[i].name) + "\" sheetId=\"" + number +
              state + "\" r:id=\"rId" + number + "\"/>";
    const std::string kind = workbook.sheets[i].chart ? "chartsheet" : "worksheet";
    const std::string part = kind + "s/sheet" + number + ".xml";
    relations += "<Relationship Id=\"rId" + number + "\" Type=\"" + documentRelations + "/" + kind +
                 "\" Target=\"" + part + "\"/>";
    types +=
        "<Override PartName=\"/xl/" + part + "\" ContentType=\"" + sheetTypes + kind + "+xml\"/>";
    archive.add("xl/" + part,
                workbook.sheets[i].chart ? chartSheetText() : sheetText(workbook.sheets[i]));
    if (workbook.sheets[i].chart) types += addChart(archive, number);
    for (const NameDescription& name : workbook.names) {
      if (name.sheet != workbook.sheets[i].name) continue;
      names += "<definedName name=\"" + escaped(name.name) + "\" localSheetId=\"" +
               std::to_string(i) + "\">" + escaped(name.refersTo.substr(1)) + "</definedName>";
    }
  }
  const bool ruled =
      std::any_of(workbook.sheets.begin(), workbook.sheets.end(),
                  [](const SheetDescription& sheet) { return !sheet.conditions.empty(); });
  if (ruled) {
    relations += std::string("<Relationship Id=\"rIdStyles\" Type=\"") + documentRelations +
                 "/styles\" Target=\"styles.xml\"/>";
    types +=
        std::string("<Override PartName=\"/xl/styles.xml\" ContentType=\"") + stylesType + "\"/>";
    archive.add("xl/styles.xml", stylesText());
  }
  for (const NameDescription& name : workbook.names) {
    if (!name.sheet.empty()) continue;
    names += "<definedName name=\"" + escaped(name.name) + "\">" +
             escaped(name.refersTo.substr(1)) + "</definedName>";
  }
  archive.add("[Content_Types].xml",
              std::string(header) +
                  "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
                  "<Default Extension=\"rels\" ContentType="
                  "\"application/vnd.openxmlformats-package.relationships+xml\"/>"
                  "<Default Extension=\"xml\" ContentType=\"application/xml\"/>"
                  "<Override PartName=\"/xl/workbook.xml\" ContentType=\"" +
                  bookType + "\"/>" +
                  (workbook.savedByExcel
                       ? "<Override PartName=\"/docProps/app.xml\" ContentType=\"application/"
                         "vnd.openxmlformats-officedocument.extended-properties+xml\"/>"
                       : "") +
                  types + "</Types>");
  archive.add("_rels/.rels",
              std::string(header) + "<Relationships " + packageRelations +
                  "><Relationship Id=\"rId1\" Type=\"" + documentRelations +
                  "/officeDocument\" Target=\"xl/workbook.xml\"/>" +
                  (workbook.savedByExcel
                       ? std::string("<Relationship Id=\"rId2\" Type=\"") + documentRelations +
                             "/extended-properties\" Target=\"docProps/app.xml\"/>"
                       : "") +
                  "</Relationships>");
  if (workbook.savedByExcel) {
    archive.add("docProps/app.xml",
                std::string(header) +
                    "<Properties xmlns=\"http://schemas.openxmlformats.org/officeDocument/2006/"
                    "extended-properties\"><Application>Microsoft Excel</Application>"
                    "</Properties>");
  }
  archive.add("xl/_rels/workbook.xml.rels", std::string(header) + "<Relationships " +
                                                packageRelations + ">" + relations +
                                                "</Relationships>");
  archive.add("xl/workbook.xml",
              std::string(header) + "<workbook " + mainNamespace + " xmlns:r=\"" +
                  documentRelations + "\"><sheets>" + sheets + "</sheets>" +
                  (names.empty() ? "" : "<definedNames>" + names + "</definedNames>") +
                  "</workbook>");
  archive.close();
}

}  // namespace quorin::fakes
