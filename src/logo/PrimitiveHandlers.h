// The handlers the table points at, one file per family.
#pragma once

#include "logo/Primitives.h"

Node* PrimAnd(PrimitiveCall& call);
Node* PrimButFirst(PrimitiveCall& call);
Node* PrimButLast(PrimitiveCall& call);
Node* PrimCatch(PrimitiveCall& call);
Node* PrimCount(PrimitiveCall& call);
Node* PrimDefinedP(PrimitiveCall& call);
Node* PrimDifference(PrimitiveCall& call);
Node* PrimDoUntil(PrimitiveCall& call);
Node* PrimEmptyP(PrimitiveCall& call);
Node* PrimEqualP(PrimitiveCall& call);
Node* PrimError(PrimitiveCall& call);
Node* PrimFirst(PrimitiveCall& call);
Node* PrimFloatP(PrimitiveCall& call);
Node* PrimFput(PrimitiveCall& call);
Node* PrimGo(PrimitiveCall& call);
Node* PrimIf(PrimitiveCall& call);
Node* PrimIfFalse(PrimitiveCall& call);
Node* PrimIfTrue(PrimitiveCall& call);
Node* PrimIntQuotient(PrimitiveCall& call);
Node* PrimIntegerP(PrimitiveCall& call);
Node* PrimItem(PrimitiveCall& call);
Node* PrimLabel(PrimitiveCall& call);
Node* PrimLast(PrimitiveCall& call);
Node* PrimList(PrimitiveCall& call);
Node* PrimListP(PrimitiveCall& call);
Node* PrimLocal(PrimitiveCall& call);
Node* PrimLput(PrimitiveCall& call);
Node* PrimMake(PrimitiveCall& call);
Node* PrimName(PrimitiveCall& call);
Node* PrimNameP(PrimitiveCall& call);
Node* PrimNodes(PrimitiveCall& call);
Node* PrimNot(PrimitiveCall& call);
Node* PrimNothing(PrimitiveCall& call);
Node* PrimNumberP(PrimitiveCall& call);
Node* PrimOr(PrimitiveCall& call);
Node* PrimOutput(PrimitiveCall& call);
Node* PrimParse(PrimitiveCall& call);
Node* PrimPrimitiveP(PrimitiveCall& call);
Node* PrimPrint(PrimitiveCall& call);
Node* PrimProduct(PrimitiveCall& call);
Node* PrimQuotient(PrimitiveCall& call);
Node* PrimRecycle(PrimitiveCall& call);
Node* PrimRemainder(PrimitiveCall& call);
Node* PrimRepeat(PrimitiveCall& call);
Node* PrimRun(PrimitiveCall& call);
Node* PrimSentence(PrimitiveCall& call);
Node* PrimShow(PrimitiveCall& call);
Node* PrimStop(PrimitiveCall& call);
Node* PrimSum(PrimitiveCall& call);
Node* PrimTest(PrimitiveCall& call);
Node* PrimThing(PrimitiveCall& call);
Node* PrimThrow(PrimitiveCall& call);
Node* PrimTo(PrimitiveCall& call);
Node* PrimTopLevel(PrimitiveCall& call);
Node* PrimType(PrimitiveCall& call);
Node* PrimWait(PrimitiveCall& call);
Node* PrimWhile(PrimitiveCall& call);
Node* PrimWord(PrimitiveCall& call);
Node* PrimWordP(PrimitiveCall& call);
Node* PrimAbs(PrimitiveCall& call);
Node* PrimArcCos(PrimitiveCall& call);
Node* PrimArcSin(PrimitiveCall& call);
Node* PrimArcTan(PrimitiveCall& call);
Node* PrimCos(PrimitiveCall& call);
Node* PrimExp(PrimitiveCall& call);
Node* PrimFloat(PrimitiveCall& call);
Node* PrimInt(PrimitiveCall& call);
Node* PrimLn(PrimitiveCall& call);
Node* PrimPower(PrimitiveCall& call);
Node* PrimRound(PrimitiveCall& call);
Node* PrimSin(PrimitiveCall& call);
Node* PrimSqrt(PrimitiveCall& call);
Node* PrimTan(PrimitiveCall& call);
Node* PrimArcTan2(PrimitiveCall& call);
Node* PrimForm(PrimitiveCall& call);

// Words and lists beyond the core.
Node* PrimAscii(PrimitiveCall& call);
Node* PrimBeforeP(PrimitiveCall& call);
Node* PrimChar(PrimitiveCall& call);
Node* PrimLowercase(PrimitiveCall& call);
Node* PrimMember(PrimitiveCall& call);
Node* PrimMemberP(PrimitiveCall& call);
Node* PrimUppercase(PrimitiveCall& call);

// Chance and the clock. The seed is taken once, from the clock, when the table is made.
void SeedLogoRandom();
Node* PrimDate(PrimitiveCall& call);
Node* PrimRandom(PrimitiveCall& call);
Node* PrimRerandom(PrimitiveCall& call);
Node* PrimTime(PrimitiveCall& call);
Node* PrimVersion(PrimitiveCall& call);

// Property lists.
Node* PrimBuryPlist(PrimitiveCall& call);
Node* PrimErProps(PrimitiveCall& call);
Node* PrimGprop(PrimitiveCall& call);
Node* PrimPlist(PrimitiveCall& call);
Node* PrimPprop(PrimitiveCall& call);
Node* PrimPps(PrimitiveCall& call);
Node* PrimRemprop(PrimitiveCall& call);
Node* PrimSetPlist(PrimitiveCall& call);
Node* PrimUnburyPlist(PrimitiveCall& call);

// The workspace: erasing, burying, definitions and their listings.
Node* PrimBury(PrimitiveCall& call);
Node* PrimBuryAll(PrimitiveCall& call);
Node* PrimBuryName(PrimitiveCall& call);
Node* PrimCopyDef(PrimitiveCall& call);
Node* PrimDefine(PrimitiveCall& call);
Node* PrimErAll(PrimitiveCall& call);
Node* PrimErase(PrimitiveCall& call);
Node* PrimErn(PrimitiveCall& call);
Node* PrimErns(PrimitiveCall& call);
Node* PrimErps(PrimitiveCall& call);
Node* PrimPo(PrimitiveCall& call);
Node* PrimPoall(PrimitiveCall& call);
Node* PrimPon(PrimitiveCall& call);
Node* PrimPons(PrimitiveCall& call);
Node* PrimPops(PrimitiveCall& call);
Node* PrimPot(PrimitiveCall& call);
Node* PrimPots(PrimitiveCall& call);
Node* PrimText(PrimitiveCall& call);
Node* PrimUnbury(PrimitiveCall& call);
Node* PrimUnburyAll(PrimitiveCall& call);
Node* PrimUnburyName(PrimitiveCall& call);

// Files.
Node* PrimAllOpen(PrimitiveCall& call);
Node* PrimClose(PrimitiveCall& call);
Node* PrimCloseAll(PrimitiveCall& call);
Node* PrimEraseFile(PrimitiveCall& call);
Node* PrimFileLen(PrimitiveCall& call);
Node* PrimFileP(PrimitiveCall& call);
Node* PrimLoad(PrimitiveCall& call);
Node* PrimOpen(PrimitiveCall& call);
Node* PrimReadPos(PrimitiveCall& call);
Node* PrimReader(PrimitiveCall& call);
Node* PrimSave(PrimitiveCall& call);
Node* PrimSetRead(PrimitiveCall& call);
Node* PrimSetReadPos(PrimitiveCall& call);
Node* PrimSetWrite(PrimitiveCall& call);
Node* PrimSetWritePos(PrimitiveCall& call);
Node* PrimWritePos(PrimitiveCall& call);
Node* PrimWriter(PrimitiveCall& call);

// The console and the reader file.
Node* PrimKeyP(PrimitiveCall& call);
Node* PrimReadChar(PrimitiveCall& call);
Node* PrimReadChars(PrimitiveCall& call);
Node* PrimReadList(PrimitiveCall& call);
Node* PrimReadWord(PrimitiveCall& call);
Node* PrimSetRwPrompt(PrimitiveCall& call);

// Rows whose family is not in this build: they report so, naming themselves.
Node* PrimUnavailable(PrimitiveCall& call);
