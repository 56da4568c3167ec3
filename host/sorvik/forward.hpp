#pragma once

class VInitialization;

namespace Qelt {

class TypedSlotCreator;
class VActionNotifier;
class VConnectable;
class VContext;
class VCreationPreferences;
class VCreatorBase;
class VCreatorProperties;
class VCreatorPropertyBase;
class VManagedObject;
class VManagedObjectBase;
class VObject;
class VParameter;
class VRequest;
class VSaveable;
class VSinkBase;
class VSlot;
class VSlotContainer;
class VStateCreatorBase;
class VValueBase;
class VValueCreator;
class ValueMap;
class ValueNotifierList;
class ValuePool;
template <class T>
class TypedSlot;
template <class T, class Input>
class VCreator;
template <class From, class To>
class VSink;
template <class T>
class VTypedValueBase;
template <class T>
class VValue;
template <class T>
class VValueParameter;
template <class T>
struct VValueTrait;

} // namespace Qelt
