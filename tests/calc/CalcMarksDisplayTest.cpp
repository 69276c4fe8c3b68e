// What highlights look like on a visible Calc, and that the mouse goes through them.
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>

#include "host/Address.h"
#include "host/calc/CalcSpreadsheet.h"
#include "host/calc/marks/MarkText.h"
#include "host/calc/office/PrivateOffice.h"
#include "tests/calc/UserHands.h"
#include "tests/calc/XlsxFile.h"
#include "tests/fakes/Eventually.h"
#include "tests/fakes/TemporaryFolder.h"
#include "tests/fakes/ui/VirtualDisplay.h"

namespace quorin::host::calc {
namespace {

struct Pixel {
  int x = 0, y = 0;
};

// A picture of the whole screen.
class Picture {
 public:
  explicit Picture(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::string kind;
    int most = 0;
    in >> kind >> width_ >> height_ >> most;
    in.get();
    if (kind != "P6" || (most != 255 && most != 65535)) throw std::runtime_error("no picture");
    part_ = most == 255 ? 1 : 2;  // bytes; the first is the higher one
    bytes_.resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_) * 3 * part_);
    in.read(bytes_.data(), static_cast<std::streamsize>(bytes_.size()));
  }

  Color at(Pixel pixel) const {
    const auto place = (static_cast<std::size_t>(pixel.y) * static_cast<std::size_t>(width_) +
                        static_cast<std::size_t>(pixel.x)) *
                       3 * part_;
    const auto part = [&](std::size_t i) {
      return int{static_cast<unsigned char>(bytes_[place + i * part_])};
    };
    return {part(0), part(1), part(2)};
  }
  // Up to rounding.
  bool shows(Pixel pixel, Color color) const {
    const Color found = at(pixel);
    return std::abs(found.red - color.red) < 3 && std::abs(found.green - color.green) < 3 &&
           std::abs(found.blue - color.blue) < 3;
  }
  std::vector<Pixel> all(Color color) const {
    std::vector<Pixel> found;
    for (Pixel pixel; pixel.y < height_; ++pixel.y)
      for (pixel.x = 0; pixel.x < width_; ++pixel.x)
        if (shows(pixel, color)) found.push_back(pixel);
    return found;
  }

 private:
  int width_ = 0, height_ = 0;
  std::size_t part_ = 1;
  std::vector<char> bytes_;
};

constexpr Color userFill{10, 200, 90}, white{255, 255, 255}, magenta{255, 0, 255};
constexpr Color overWhite{255, 127, 255}, overFill{132, 100, 172};
constexpr const char* formula = "=\"QXZ\"=\"QXZ\"";

class CalcMarksDisplay : public testing::Test {
 protected:
  CalcMarksDisplay() {
    PrivateOffice::Options options;
    options.headless = false;
    options.environment = {{"DISPLAY", display_.name()}};
    office_ = std::make_shared<PrivateOffice>(options);
    calc_ = std::make_unique<CalcSpreadsheet>(office_);
    fakes::writeXlsx(fakes::knownWorkbook(), folder_ / "Known.xlsx");
    calc_->openWorkbook((folder_ / "Known.xlsx").string());
    hands_ = std::make_unique<UserHands>(office_->open());
    hands_->fill("Known.xlsx", "Blank", "C8",
                 userFill.red << 16 | userFill.green << 8 | userFill.blue);
    calc_->goTo(at("A1"));
  }
  ~CalcMarksDisplay() override {
    hands_.reset();
    calc_.reset();
  }

  static RangeRef at(const char* address) {
    return {{"Known.xlsx", "Blank"}, parseA1(address).value()};
  }
  std::string mark(const char* address) {
    const std::string id = calc_->addFormatCondition(at(address), formula);
    calc_->setConditionFill(at(address).sheet, id, magenta);
    return id;
  }
  Picture picture() {
    display_.screenshot(folder_ / "screen.ppm");
    return Picture(folder_ / "screen.ppm");
  }
  // The middle of the pixels that have the colour, once there are some and no more come.
  Pixel middleOf(Color color, std::size_t* count = nullptr) {
    std::vector<Pixel> found, before;
    EXPECT_TRUE(eventually([&] {
      before = std::move(found);
      found = picture().all(color);
      return !found.empty() && found.size() == before.size();
    }));
    if (count != nullptr) *count = found.size();
    Pixel sum;
    for (const Pixel& pixel : found) sum = {sum.x + pixel.x, sum.y + pixel.y};
    const int total = std::max(1, static_cast<int>(found.size()));
    return {sum.x / total, sum.y / total};
  }
  bool comesToShow(Pixel pixel, Color color) {
    return eventually([&] { return picture().shows(pixel, color); });
  }

  ui::VirtualDisplay display_{{1200, 800}};
  TemporaryFolder folder_;
  std::shared_ptr<PrivateOffice> office_;
  std::unique_ptr<CalcSpreadsheet> calc_;
  std::unique_ptr<UserHands> hands_;
};

TEST_F(CalcMarksDisplay, ColourWhiteAndFilledCellsAndLeaveThemAsTheyWere) {
  const Pixel filled = middleOf(userFill);
  EXPECT_TRUE(picture().all(overWhite).empty());
  EXPECT_TRUE(picture().all(overFill).empty());
  const std::string id = mark("C8,E10:E12");
  std::size_t count = 0;
  const Pixel plain = middleOf(overWhite, &count);
  EXPECT_TRUE(comesToShow(filled, overFill));

  // Stacked, they are no darker.
  const std::string another = mark("C8:E10");
  EXPECT_EQ(calc_->formatConditions(at("C8")).size(), 2U);
  std::size_t more = 0;
  middleOf(overWhite, &more);
  EXPECT_GT(more, count);
  EXPECT_TRUE(picture().shows(plain, overWhite));
  EXPECT_TRUE(picture().shows(filled, overFill));
  calc_->deleteCondition(at("C8:E10"), another);
  EXPECT_TRUE(eventually([&] { return picture().all(overWhite).size() == count; }));

  calc_->setConditionRange(at("C8"), id);
  EXPECT_TRUE(comesToShow(plain, white));
  EXPECT_TRUE(picture().shows(filled, overFill));
  calc_->deleteCondition(at("A1:Z99"), id);
  EXPECT_TRUE(comesToShow(filled, userFill));
  EXPECT_TRUE(picture().all(overWhite).empty());
  EXPECT_TRUE(picture().all(overFill).empty());
}

TEST_F(CalcMarksDisplay, LetTheMouseThroughAndTheClipboardAlone) {
  hands_->enter("Known.xlsx", "Blank", "B3", "7");
  calc_->goTo(at("B3"));
  ASSERT_TRUE(eventually([&] {
    return display_.xdotool(
        {"search", "--onlyvisible", "--class", "libreoffice-calc", "windowactivate", "--sync"});
  }));
  // A window that has just come to the front may lose a key.
  ASSERT_TRUE(eventually([&] {
    return display_.xdotool({"key", "Home"}) && calc_->activeCell() == at("A3");
  }));
  ASSERT_TRUE(display_.xdotool({"key", "Right"}));
  ASSERT_TRUE(eventually([&] { return calc_->activeCell() == at("B3"); }));
  ASSERT_TRUE(display_.xdotool({"key", "ctrl+c"}));
  const std::string id = mark("E12");
  const Pixel marked = middleOf(overWhite);
  ASSERT_TRUE(display_.xdotool(
      {"mousemove", std::to_string(marked.x), std::to_string(marked.y), "click", "1"}));
  EXPECT_TRUE(eventually([&] { return calc_->activeCell() == at("E12"); }));
  EXPECT_EQ(calc_->selection(), at("E12"));
  calc_->setConditionRange(at("F14"), id);
  calc_->deleteCondition(at("F14"), id);
  ASSERT_TRUE(display_.xdotool({"key", "ctrl+v"}));
  EXPECT_TRUE(
      eventually([&] { return calc_->values(at("E12")).cells == std::vector<CellValue>{7.0}; }));
}

}  // namespace
}  // namespace quorin::host::calc
