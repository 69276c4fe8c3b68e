#include "script/terms/Terminology.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <unordered_map>
#include <unordered_set>

#include "script/terms/Words.h"

namespace quorin::script {
namespace {

constexpr std::size_t columnCount = 6;
using Row = std::array<std::string_view, columnCount>;

Row split(std::string_view line) {
  Row row;
  for (std::string_view& column : row) {
    const std::size_t tab = line.find('\t');
    column = line.substr(0, tab);
    line = tab == std::string_view::npos ? std::string_view() : line.substr(tab + 1);
  }
  return row;
}

std::optional<FourCharCode> parseCode(std::string_view text) {
  if (text.size() == 4) return codeOf(text);
  if (text.size() != 10 || !text.starts_with("0x")) return std::nullopt;
  FourCharCode code = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data() + 2, end, code, 16);
  if (error != std::errc() || stop != end) return std::nullopt;
  return code;
}

template <typename T>
void setFirst(std::optional<T>& slot, T value) {
  if (!slot) slot = value;
}

}  // namespace

struct Terminology::Tables {
  struct Entry {
    std::vector<std::string> words;
    std::unique_ptr<Term> term;
  };
  std::unordered_map<std::string, std::vector<Entry>> byFirstWord;  // longest first
  std::unordered_map<std::string, Term*> byText;                    // lower case
  std::unordered_map<std::string, std::unique_ptr<CommandTerm>> commands;
  std::map<std::pair<FourCharCode, FourCharCode>, const CommandTerm*> commandsByCode;
  std::unordered_map<FourCharCode, std::string_view> classNames, propertyNames, enumeratorNames;
  std::unordered_set<std::string> labels;
  std::vector<MemberTerm> members;
  std::unordered_map<std::string, std::string> parents;  // of classes, lower case

  Term& term(std::string_view text) {
    Term*& known = byText[lowerCase(text)];
    if (!known) {
      auto made = std::make_unique<Term>();
      made->text = text;
      known = made.get();
      std::vector<std::string> words = splitWords(lowerCase(text));
      std::vector<Entry>& entries = byFirstWord[words.front()];
      entries.push_back({std::move(words), std::move(made)});
    }
    return *known;
  }

  void add(const Row& row);
  void addCommand(const Row& row);
  void addParameter(const Row& row, FourCharCode code);
};

void Terminology::Tables::add(const Row& row) {
  const auto& [kind, text, codeText, owner, type, access] = row;
  if (kind == "command") return addCommand(row);
  if (kind == "direct") {
    const auto command = commands.find(lowerCase(owner));
    if (command == commands.end() || command->second->takesDirect) return;
    command->second->takesDirect = true;
    command->second->directRequired = access == "req";
    command->second->directType = type;
    return;
  }
  const std::optional<FourCharCode> code = parseCode(codeText);
  if (!code || text.empty()) return;
  if (kind == "parameter") return addParameter(row, *code);
  Term& entry = term(text);
  if (kind == "class") {
    setFirst(entry.type, *code);
    classNames.try_emplace(*code, entry.text);
    if (!owner.empty()) parents.try_emplace(lowerCase(text), lowerCase(owner));
  } else if (kind == "plural") {
    setFirst(entry.plural, *code);
  } else if (kind == "element") {
    setFirst(entry.plural, *code);
    members.push_back(
        {std::string(owner), std::string(text), *code, std::string(type), true, false});
  } else if (kind == "property") {
    setFirst(entry.property, *code);
    propertyNames.try_emplace(*code, entry.text);
    members.push_back(
        {std::string(owner), std::string(text), *code, std::string(type), false, access == "r/w"});
  } else if (kind == "enumerator") {
    setFirst(entry.enumerator, *code);
    enumeratorNames.try_emplace(*code, entry.text);
  }
}

void Terminology::Tables::addCommand(const Row& row) {
  const auto& [kind, text, codeText, owner, type, access] = row;
  if (codeText.size() != 8) return;
  std::unique_ptr<CommandTerm>& command = commands[lowerCase(text)];
  if (command) return;  // the same command, listed in a second suite
  command = std::make_unique<CommandTerm>();
  command->term = text;
  command->eventClass = codeOf(codeText.substr(0, 4));
  command->eventID = codeOf(codeText.substr(4));
  command->resultType = type;
  term(text).command = command.get();
  commandsByCode.try_emplace({command->eventClass, command->eventID}, command.get());
}

void Terminology::Tables::addParameter(const Row& row, FourCharCode code) {
  const auto& [kind, text, codeText, owner, type, access] = row;
  const auto found = commands.find(lowerCase(owner));
  if (found == commands.end()) return;
  std::string label = lowerCase(text);
  std::vector<ParameterTerm>& parameters = found->second->parameters;
  std::vector<std::string> words = splitWords(label);
  const bool known = std::any_of(parameters.begin(), parameters.end(),
                                 [&](const ParameterTerm& each) { return each.words == words; });
  if (!known) {
    parameters.push_back(
        {std::string(text), std::move(words), code, std::string(type), access == "req"});
  }
  labels.insert(std::move(label));
}

Terminology::Terminology(std::string_view table) : tables_(std::make_unique<Tables>()) {
  while (!table.empty()) {
    const std::size_t end = table.find('\n');
    tables_->add(split(table.substr(0, end)));
    table = end == std::string_view::npos ? std::string_view() : table.substr(end + 1);
  }
  for (auto& [word, entries] : tables_->byFirstWord) {
    std::stable_sort(entries.begin(), entries.end(),
                     [](const auto& a, const auto& b) { return a.words.size() > b.words.size(); });
  }
}

Terminology::~Terminology() = default;

Terminology::Match Terminology::match(std::span<const std::string_view> words) const {
  if (words.empty()) return {};
  const auto found = tables_->byFirstWord.find(std::string(words.front()));
  if (found == tables_->byFirstWord.end()) return {};
  for (const Tables::Entry& entry : found->second) {
    if (entry.words.size() <= words.size() &&
        std::equal(entry.words.begin(), entry.words.end(), words.begin())) {
      return {entry.term.get(), entry.words.size()};
    }
  }
  return {};
}

const Term* Terminology::find(std::string_view term) const {
  const auto found = tables_->byText.find(lowerCase(term));
  return found == tables_->byText.end() ? nullptr : found->second;
}

bool Terminology::isLabel(std::string_view term) const {
  return tables_->labels.contains(lowerCase(term));
}

namespace {

std::optional<std::string_view> nameIn(
    const std::unordered_map<FourCharCode, std::string_view>& names, FourCharCode code) {
  const auto found = names.find(code);
  if (found == names.end()) return std::nullopt;
  return found->second;
}

}  // namespace

std::optional<std::string_view> Terminology::className(FourCharCode code) const {
  return nameIn(tables_->classNames, code);
}

std::optional<std::string_view> Terminology::propertyName(FourCharCode code) const {
  return nameIn(tables_->propertyNames, code);
}

std::optional<std::string_view> Terminology::enumeratorName(FourCharCode code) const {
  return nameIn(tables_->enumeratorNames, code);
}

const CommandTerm* Terminology::command(FourCharCode eventClass, FourCharCode eventID) const {
  const auto found = tables_->commandsByCode.find({eventClass, eventID});
  return found == tables_->commandsByCode.end() ? nullptr : found->second;
}

const std::vector<MemberTerm>& Terminology::members() const {
  return tables_->members;
}

std::string_view Terminology::parentOf(std::string_view className) const {
  const auto found = tables_->parents.find(std::string(className));
  return found == tables_->parents.end() ? std::string_view() : found->second;
}

}  // namespace quorin::script
