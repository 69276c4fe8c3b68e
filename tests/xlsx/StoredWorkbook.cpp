#include "tests/xlsx/StoredWorkbook.h"

#include <cstdlib>
#include <cstring>
#include <optional>
#include <pugixml.hpp>
#include <stdexcept>

#include "host/Address.h"
#include "tests/xlsx/ZipArchive.h"

namespace quorin::xlsx {
namespace {

// The name without the prefix of its namespace.
std::string localName(const char* name) {
  const char* const colon = std::strchr(name, ':');
  return colon ? colon + 1 : name;
}

std::vector<pugi::xml_node> children(const pugi::xml_node& node, const std::string& name) {
  std::vector<pugi::xml_node> found;
  for (const pugi::xml_node& child : node.children())
    if (localName(child.name()) == name) found.push_back(child);
  return found;
}

pugi::xml_node child(const pugi::xml_node& node, const std::string& name) {
  for (const pugi::xml_node& one : node.children())
    if (localName(one.name()) == name) return one;
  return {};
}

// The root element of a part; an empty one when there is no such part.
class Part {
 public:
  Part(const ZipArchive& archive, const std::string& name) {
    const std::optional<std::string> text = archive.file(name);
    if (!text) return;
    const unsigned options = pugi::parse_default | pugi::parse_ws_pcdata_single;
    if (!document_.load_buffer(text->data(), text->size(), options))
      throw std::runtime_error(name + " is not XML");
  }
  pugi::xml_node root() const { return document_.document_element(); }

 private:
  pugi::xml_document document_;
};

// Where the relations of a part point to, by their identifiers.
std::map<std::string, std::string> relations(const ZipArchive& archive, const std::string& part) {
  const std::size_t slash = part.rfind('/');
  const Part file(archive, part.substr(0, slash) + "/_rels" + part.substr(slash) + ".rels");
  std::map<std::string, std::string> targets;
  for (const pugi::xml_node& relation : children(file.root(), "Relationship"))
    targets[relation.attribute("Id").value()] = relation.attribute("Target").value();
  return targets;
}

std::string partName(const std::string& target) {
  return target.starts_with('/') ? target.substr(1) : "xl/" + target;
}

// The value of an attribute whose name has this local part: r:id.
std::string relationOf(const pugi::xml_node& node) {
  for (const pugi::xml_attribute& attribute : node.attributes())
    if (std::strchr(attribute.name(), ':') && localName(attribute.name()) == "id")
      return attribute.value();
  return {};
}

// The texts of a string: its own, or those of its runs; not the phonetic ones.
std::string textOf(const pugi::xml_node& item) {
  std::string text = child(item, "t").text().get();
  for (const pugi::xml_node& run : children(item, "r")) text += child(run, "t").text().get();
  return text;
}

std::string percentDecoded(const std::string& text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size()) {
      plain += static_cast<char>(std::strtol(text.substr(i + 1, 2).c_str(), nullptr, 16));
      i += 2;
    } else {
      plain += text[i];
    }
  }
  return plain;
}

std::string fileName(const std::string& target) {
  const std::string plain = percentDecoded(target);
  return plain.substr(plain.find_last_of("/\\") + 1);
}

class SheetReader {
 public:
  SheetReader(const std::vector<std::string>& shared, StoredSheet& sheet)
      : shared_(shared), sheet_(sheet) {}

  void read(const pugi::xml_node& worksheet) {
    int row = 0;
    for (const pugi::xml_node& line : children(child(worksheet, "sheetData"), "row")) {
      row = line.attribute("r").as_int(row + 1);
      int column = 0;
      for (const pugi::xml_node& cell : children(line, "c")) {
        const auto area = host::parseA1(cell.attribute("r").value());
        column = area ? area->front().firstColumn : column + 1;
        readCell(cell, row, column);
      }
    }
  }

 private:
  void readCell(const pugi::xml_node& node, int row, int column) {
    StoredCell cell;
    cell.value = valueOf(node);
    if (const pugi::xml_node formula = child(node, "f")) readFormula(formula, row, column, cell);
    if (cell.kind != FormulaKind::none || cell.value != host::CellValue(host::Blank()))
      sheet_.cells[{row, column}] = std::move(cell);
  }

  host::CellValue valueOf(const pugi::xml_node& node) const {
    const std::string type = node.attribute("t").value();
    if (type == "inlineStr") return textOf(child(node, "is"));
    const pugi::xml_node value = child(node, "v");
    if (!value) return host::Blank();
    const char* const text = value.text().get();
    if (type == "s") return shared_.at(std::strtoul(text, nullptr, 10));
    if (type == "str") return std::string(text);
    if (type == "b") return std::strcmp(text, "1") == 0;
    if (type == "e") return host::CellError{text};
    return std::strtod(text, nullptr);
  }

  void readFormula(const pugi::xml_node& node, int row, int column, StoredCell& cell) {
    const std::string type = node.attribute("t").value();
    const std::string text = node.text().get();
    cell.kind = type == "array"       ? FormulaKind::array
                : type == "dataTable" ? FormulaKind::dataTable
                                      : FormulaKind::plain;
    if (cell.kind == FormulaKind::dataTable) return;
    if (type != "shared") {
      if (!text.empty()) cell.formula = "=" + text;
      return;
    }
    const int group = node.attribute("si").as_int();
    if (!text.empty()) masters_[group] = {text, row, column};
    const auto master = masters_.find(group);
    if (master == masters_.end()) throw std::runtime_error("a shared formula has no first cell");
    const Master& first = master->second;
    cell.formula =
        "=" +
        (text.empty() ? movedFormula(first.text, row - first.row, column - first.column) : text);
  }

  struct Master {
    std::string text;
    int row = 0, column = 0;
  };

  const std::vector<std::string>& shared_;
  StoredSheet& sheet_;
  std::map<int, Master> masters_;
};

}  // namespace

StoredWorkbook readWorkbook(const std::filesystem::path& file) {
  const ZipArchive archive(file);
  const std::string bookPart = "xl/workbook.xml";
  const Part book(archive, bookPart);
  const auto targets = relations(archive, bookPart);

  std::vector<std::string> shared;
  const Part strings(archive, "xl/sharedStrings.xml");
  for (const pugi::xml_node& item : children(strings.root(), "si")) shared.push_back(textOf(item));

  StoredWorkbook workbook;
  for (const pugi::xml_node& node : children(child(book.root(), "sheets"), "sheet")) {
    const Part part(archive, partName(targets.at(relationOf(node))));
    if (localName(part.root().name()) != "worksheet") continue;
    StoredSheet& sheet = workbook.sheets.emplace_back();
    sheet.name = node.attribute("name").value();
    SheetReader(shared, sheet).read(part.root());
  }
  for (const pugi::xml_node& node :
       children(child(book.root(), "externalReferences"), "externalReference")) {
    const auto links = relations(archive, partName(targets.at(relationOf(node))));
    workbook.externals.push_back(links.empty() ? "" : fileName(links.begin()->second));
  }
  return workbook;
}

}  // namespace quorin::xlsx
