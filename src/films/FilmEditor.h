#pragma once

#include "films/FilmLibrary.h"
#include "platform/InputBox.h"
#include "platform/MessageBoxes.h"
#include "util/NumberLocale.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace drx9 {

/// The bound boxes, by the index of `txtParam`.
enum class FilmBox : std::uint8_t { Tooling, Density, ZFactor, EndThick, ThickSet, FilmName };
inline constexpr std::size_t kFilmBoxes = 6;
inline constexpr std::size_t kFilmSensors = 6;

/// A row of the film list.
struct FilmRow {
    std::string number; ///< empty where the film has none
    std::string name;
};

/// What the window shows of the current film and its material.
struct ShownFilm {
    bool film = false;     ///< a film is current
    bool material = false; ///< a material is current
    std::array<std::string, kFilmBoxes> boxes;
    std::string materialName;
    std::array<bool, kFilmSensors> sensors{};
    int minutes = 0; ///< 0..99
    int seconds = 0; ///< 0..59
};

struct FilmEditorParts {
    FilmLibrary& library;
    MessageBoxes& boxes;
    InputBox& input;
    const NumberLocale& locale;
};

/// What the film window does with the library: shows a film, takes its edits, adds films and materials. All
/// texts are UTF-8. Adding and renaming may show a box and so pump events.
class FilmEditor {
public:
    explicit FilmEditor(const FilmEditorParts& parts)
        : parts_(parts) {}

    /// The film list's rows, in the order in which a download numbers them.
    [[nodiscard]] std::vector<FilmRow> films();
    [[nodiscard]] std::vector<std::string> materials();

    /// Makes the film of that name the current one, with its material.
    void ShowDBFilm(const std::string& name);
    [[nodiscard]] ShownFilm shown();

    /// A number typed into a bound box. A text that is no number changes nothing.
    void editBox(FilmBox box, const std::string& text);
    /// The name box was left, or Enter pressed in it. True when the film list must be read again.
    bool EditFilmName(const std::string& text);
    void clickSensor(std::size_t sensor, bool checked); ///< 0..5
    void setTime(int minutes, int seconds);
    /// The material combo's text was changed: makes that material the current one, of the film too. Where
    /// there is none of that name the film keeps its own.
    void changeMaterial(const std::string& text);
    /// Asks for a name and adds a material. Its name, or "" when none was added.
    std::string addMaterial();
    /// Asks for a name and adds a film with that material, which becomes the current one. Where the name is
    /// taken the current film stays. True when one was added.
    bool addFilm(const std::string& material);

private:
    [[nodiscard]] std::string text(Dat source, const char* field);
    [[nodiscard]] double number(const char* field);
    [[nodiscard]] std::string fitting(const std::string& material);
    void tellAdded(const std::string& answer, const std::string& name);
    void selectMaterial(const std::string& name);
    void refuse(const std::string& text, const std::string& title);

    FilmEditorParts parts_;
};

} // namespace drx9
