// Writes a file once, or moves one into its place: the program that tests watch and kill while it does.

#include "shell/base/file_output.hpp"
#include "shell/scene/scene.hpp"
#include "shell/scene_file/scene_file.hpp"

/// @param arguments the file to write and, where there is one that is to be moved there, that one.
int main(int count, char** arguments) {
    if (count > 2) {
        korl::moveIntoPlace(arguments[2], arguments[1]);
        return 0;
    }
    korl::Scene scene;
    scene.background = {0, 0, 0, 1};
    korl::saveScene(arguments[1], scene);
}
