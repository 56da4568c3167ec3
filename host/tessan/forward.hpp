#pragma once

namespace Tessan {

class Ageable;
class ChunkBase;
class ControlBlock;
class Counted;
class SpeakPtr;
template <class T>
class Chunk;
template <class T>
class TypedChunk;
template <class T, class Base = T>
class StrongPtr;
template <class T, class Base = T>
class WeakPtr;

} // namespace Tessan
