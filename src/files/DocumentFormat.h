#pragma once

namespace zelvanor::document {

// The keyword lines of a document; reader, writer and the inputs of the backend take them from here. Keywords are
// matched at the start of a line, case counts, and what follows on the line is ignored.

inline constexpr const char* BeginHostBlock = "BeginMVS";
inline constexpr const char* EndHostBlock = "EndMVS";

inline constexpr const char* NMRBegin = "NMRSelectionBegin";
inline constexpr const char* NMREnd = "NMRSelectionEnd";
inline constexpr const char* QuantumBegin = "QuantumSelectionBegin";
inline constexpr const char* QuantumEnd = "QuantumSelectionEnd";
inline constexpr const char* LabelledBegin = "LabelledAtomsBegin";
inline constexpr const char* LabelledEnd = "LabelledAtomsEnd";
inline constexpr const char* EquivalentBegin = "EquivalentAtomsBegin";
inline constexpr const char* EquivalentSet = "EquivalentSet";
inline constexpr const char* EquivalentEnd = "EquivalentAtomsEnd";

inline constexpr const char* OptionsBegin = "OptionsBegin";
inline constexpr const char* OptionsEnd = "OptionsEnd";
inline constexpr const char* AtomicNumbersBegin = "NMRAtomicNumbersBegin";
inline constexpr const char* AtomicNumbersEnd = "NMRAtomicNumbersEnd";

inline constexpr const char* ResultsBegin = "ShieldingCouplingBegin";
inline constexpr const char* ResultsShielding = "SHIELDING";
inline constexpr const char* ResultsTensor = "TENSOR";
inline constexpr const char* ResultsCoupling = "COUPLING";
inline constexpr const char* ResultsEnd = "ShieldingCouplingEnd";

inline constexpr const char* SpectraBegin = "SpectraBegin";
inline constexpr const char* SpectraHeader = "FREQUENCY  INTENSITY  DEGENERACY  LINEWIDTH";
inline constexpr const char* SpectraHeaderWord = "FREQUENCY";  // as much of it as a reader looks at
inline constexpr const char* SpectraType = "SPECTRATYPE";
inline constexpr const char* SpectraReference = "REFERENCESHIELDING";
inline constexpr const char* SpectraHalf = "NMRATOMSWITHSPINHALF";
inline constexpr const char* SpectraEnd = "SpectraEnd";

}  // namespace zelvanor::document
