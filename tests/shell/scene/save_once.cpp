// Writes a file once: the program that a test kills while it does.

#include "shell/scene/scene.hpp"
#include "shell/scene/scene_file.hpp"

/// @param arguments the file to write.
int main(int, char** arguments) {
    korl::Scene scene;
    scene.background = {0, 0, 0, 1};
    korl::saveScene(arguments[1], scene);
}
