// Makes an icon file of drawings that a person can edit.
// Usage: make_icon OUT.ico DRAWING.txt...
//
// A drawing: "# comment" lines; "image WIDTH HEIGHT BITS" (4 or 8 bits for each pixel); a line for each
// colour, a letter and RRGGBB or the word "transparent"; then "pixels" and a line of letters for each row.
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

void put(Bytes& bytes, std::uint32_t value, int size) {
    for (int i = 0; i < size; ++i) bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

struct Drawing {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t bits = 0;
    /// 0x00RRGGBB.
    std::vector<std::uint32_t> palette;
    /// An index into the palette for each pixel, or -1 for transparent; rows from the top.
    std::vector<int> pixels;
};

class Reader {
public:
    explicit Reader(const std::string& path) : path_(path), file_(path) {
        if (!file_) fail("cannot be read");
    }

    Drawing read() {
        std::istringstream head = line();
        std::string word;
        if (!(head >> word >> drawing_.width >> drawing_.height >> drawing_.bits) || word != "image") {
            fail("\"image WIDTH HEIGHT BITS\" expected");
        }
        if ((drawing_.bits != 4 && drawing_.bits != 8) || drawing_.width == 0 || drawing_.width > 256 ||
            drawing_.height == 0 || drawing_.height > 256) {
            fail("an image has 4 or 8 bits, and 1 to 256 pixels each way");
        }
        read_colors();
        for (std::uint32_t row = 0; row < drawing_.height; ++row) read_row();
        return std::move(drawing_);
    }

private:
    [[noreturn]] void fail(const std::string& what) const {
        throw std::runtime_error(path_ + ":" + std::to_string(line_number_) + ": " + what);
    }

    /// The next line that is no comment.
    std::istringstream line() {
        std::string text;
        do {
            if (!std::getline(file_, text)) fail("the file ends too early");
            ++line_number_;
        } while (text.starts_with('#'));
        return std::istringstream(text);
    }

    void read_colors() {
        for (;;) {
            std::istringstream text = line();
            std::string letter;
            std::string color;
            text >> letter >> color;
            if (letter == "pixels") return;
            const bool is_number =
                color.size() == 6 && color.find_first_not_of("0123456789ABCDEFabcdef") == std::string::npos;
            if (letter.size() != 1 || (color != "transparent" && !is_number)) fail("a colour expected");
            if (color == "transparent") {
                letters_[letter[0]] = -1;
                continue;
            }
            letters_[letter[0]] = static_cast<int>(drawing_.palette.size());
            drawing_.palette.push_back(static_cast<std::uint32_t>(std::stoul(color, nullptr, 16)));
            // One entry stays free for the black that transparent pixels need.
            if (drawing_.palette.size() >= std::size_t{1} << drawing_.bits) fail("too many colours");
        }
    }

    void read_row() {
        const std::string row = line().str();
        if (row.size() != drawing_.width) fail("a row of " + std::to_string(drawing_.width) + " letters expected");
        for (const char letter : row) {
            const auto color = letters_.find(letter);
            if (color == letters_.end()) fail(std::string("the colour ") + letter + " is unknown");
            drawing_.pixels.push_back(color->second);
        }
    }

    std::string path_;
    std::ifstream file_;
    int line_number_ = 0;
    std::map<char, int> letters_;
    Drawing drawing_;
};

/// Appends rows from the bottom, `bits` for each pixel, each row filled up to whole 32 bits.
template <class Pixel>
void put_rows(Bytes& bytes, const Drawing& drawing, std::uint32_t bits, Pixel pixel) {
    for (std::uint32_t row = drawing.height; row-- > 0;) {
        Bytes packed((std::size_t{drawing.width} * bits + 31) / 32 * 4);
        for (std::uint32_t column = 0; column < drawing.width; ++column) {
            const std::uint32_t value = pixel(drawing.pixels[row * drawing.width + column]);
            const std::uint32_t at = column * bits;
            packed[at / 8] = static_cast<std::uint8_t>(packed[at / 8] | value << (8 - bits - at % 8));
        }
        bytes.insert(bytes.end(), packed.begin(), packed.end());
    }
}

/// The image as icons hold it: a bitmap header, the palette, the colours, and the mask of what is transparent.
Bytes image_of(const Drawing& drawing) {
    Bytes bytes;
    put(bytes, 40, 4);
    put(bytes, drawing.width, 4);
    put(bytes, drawing.height * 2, 4);  // colours and mask
    put(bytes, 1, 2);
    put(bytes, drawing.bits, 2);
    bytes.resize(40);
    for (std::size_t i = 0; i < std::size_t{1} << drawing.bits; ++i) {
        put(bytes, i < drawing.palette.size() ? drawing.palette[i] : 0, 4);
    }
    // Transparent pixels show the screen through only where their colour is black.
    std::uint32_t black = 0;
    while (black < drawing.palette.size() && drawing.palette[black] != 0) ++black;
    put_rows(bytes, drawing, drawing.bits,
             [black](int color) { return color < 0 ? black : static_cast<std::uint32_t>(color); });
    put_rows(bytes, drawing, 1, [](int color) { return color < 0 ? 1U : 0U; });
    return bytes;
}

Bytes icon_of(const std::vector<Drawing>& drawings) {
    Bytes icon;
    Bytes images;
    put(icon, 0, 2);
    put(icon, 1, 2);
    put(icon, static_cast<std::uint32_t>(drawings.size()), 2);
    for (const Drawing& drawing : drawings) {
        const Bytes image = image_of(drawing);
        put(icon, drawing.width, 1);  // 256 is written as 0
        put(icon, drawing.height, 1);
        put(icon, drawing.bits == 4 ? 16 : 0, 1);
        put(icon, 0, 1);
        put(icon, 1, 2);
        put(icon, drawing.bits, 2);
        put(icon, static_cast<std::uint32_t>(image.size()), 4);
        put(icon, static_cast<std::uint32_t>(6 + 16 * drawings.size() + images.size()), 4);
        images.insert(images.end(), image.begin(), image.end());
    }
    icon.insert(icon.end(), images.begin(), images.end());
    return icon;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "usage: make_icon OUT.ico DRAWING.txt...\n";
        return 2;
    }
    try {
        std::vector<Drawing> drawings;
        for (int i = 2; i < argc; ++i) drawings.push_back(Reader(argv[i]).read());
        const Bytes icon = icon_of(drawings);
        std::ofstream file(argv[1], std::ios::binary);
        file.write(reinterpret_cast<const char*>(icon.data()), static_cast<std::streamsize>(icon.size()));
        if (!file.flush()) throw std::runtime_error(std::string(argv[1]) + ": cannot be written");
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
