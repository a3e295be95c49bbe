#include "tests/robustness/cases.h"

namespace brimlet {
namespace {

std::vector<FaultCase> transportCases() {
    const char* const area = "Time and transport";
    return {
        {1,
         area,
         "The service accepts and never answers, drips a byte or a header line at a time, or sends "
         "100 Continue for ever",
         "Transfer failed after 60 seconds in all; other requests go on meanwhile",
         {"robustness.transport: itSurvives, silenceIsWaitedForSixtySeconds",
          "platform.httplimits: theDeadlineHoldsHoweverSteadilyBytesDrip, "
          "oneHeaderLineAtATimeIsTooSlowAsWell, theDeadlineIsOneInstant, "
          "aRequestThatSaysNothingHasTheUsualLimits"}},
        {2,
         area,
         "A body, a head or a chunk extension without end; a compressed body that unpacks to 512 "
         "MiB",
         "Transfer failed at the limit; memory stays bounded; nothing is ever unpacked",
         {"robustness.transport: itSurvives",
          "platform.httpendless: whatHasNoEndIsCutShort, aPicturesEndlessBodyIsCutAtItsOwnLimit, "
          "whatIsCompressedOnTheWayIsNotUnpacked",
          "platform.httplimits: aBodyHasItsLimit, aHeadHasItsLimit, "
          "bodiesThatNeverEndHoldABoundedAmountTogether"}},
        {3,
         area,
         "Refused, unreachable, reset or closed: on accepting, in the head, in the body, just as a "
         "request goes out",
         "Transfer failed; a cut body is never applied; what was shown stays; a POST is never sent "
         "twice",
         {"robustness.transport: itSurvives",
          "platform.httpbroken: nobodyListeningIsUnreachable, anAddressWithoutARouteIsUnreachable, "
          "aResetIsBroken, aConnectionEndedOnAcceptIsAFailure",
          "platform.httpkept: aGetWhoseConnectionEndsAsItGoesOutIsSentOnceMore, "
          "aGetIsNotSentWithoutEnd, aPostIsNeverSentTwice"}},
        {4,
         area,
         "Packets are dropped for two minutes",
         "About twenty requests wait at the most (60 s ÷ 3 s); the first tick afterwards succeeds "
         "and nothing is left open",
         {"robustness.transport: droppedPacketsHoldUpABoundedNumberOfRequests",
          "platform.httplimits: afterAnOutageNothingIsLeftAndTheNextRequestSucceeds"}},
        {5,
         area,
         "The machine sleeps for eight hours; the network is back ten seconds after the wake",
         "One heartbeat for the wake, and no burst of missed ticks",
         {"robustness.time: aLongSleepIsFollowedByOneHeartbeatAndNoBurst"}},
        {6,
         area,
         "Replies arrive out of order",
         "The last to arrive counts",
         {"host.serviceclient: ofOverlappingRepliesTheLastToArriveWins",
          "host.displayrefresh: ofOverlappingRepliesTheLastToArriveWins"}},
        {7,
         area,
         "The wall clock jumps 400 days ahead or 10 back",
         "Polls stay three seconds apart; a pause follows the wall clock",
         {"robustness.time: aJumpOfTheWallClockMovesThePauseAndNothingElse",
          "host.hoststore: aJumpOfTheWallClockLeavesTheTicksAlone, thePauseFollowsTheWallClock"}},
    };
}

std::vector<FaultCase> httpCases() {
    const char* const area = "HTTP";
    return {
        {8,
         area,
         "Interim replies (100, 102, 103 Early Hints) before the reply",
         "The reply counts",
         {"robustness.http: itSurvives", "platform.httpbroken: interimRepliesAreNotTheReply"}},
        {9,
         area,
         "Any other status than 200",
         "Rejected; its body is not read; the cadence is unchanged",
         {"robustness.http: itSurvives",
          "platform.httplimits: onlyStatusesAskedForCarryABody, "
          "aBodyNobodyAskedForNeitherHoldsUpNorSpoilsTheStatus",
          "platform.httpbroken: anotherProtocolIsNotSwitchedTo"}},
        {10,
         area,
         "401 or 407 that asks for a password",
         "Rejected; nobody is asked and nothing remembered",
         {"robustness.http: itSurvives, noPasswordIsEverSent",
          "platform.httpbroken: aRefusedPasswordIsNotAskedFor"}},
        {11,
         area,
         "200 with a page, nothing, white space or cut JSON; with JSON that is no object",
         "Transfer failed; rejected where it is JSON but no object",
         {"robustness.http: itSurvives", "host.hostilejson: oddTextsAreFailedTransfers"}},
        {12,
         area,
         "Negative, doubled or wrong lengths, garbage, HTTP/0.9, bad chunks, bytes that nobody "
         "asked for, a folded header line with none before it",
         "Transfer failed; stray bytes are never taken for the next reply",
         {"robustness.http: itSurvives",
          "platform.httpbroken: whatIsNotAWholeReplyIsBroken, theSameWithoutTheCutIsBrokenAtOnce",
          "platform.httpkept: whatComesUnaskedIsNeverTheNextReply, "
          "excessInTheSameReadIsNoReplyEither",
          "platform.httptls: whatComesUnaskedIsNoReplyBehindTlsEither, "
          "whatComesInTheSameRecordAsABodyIsNoReplyEither",
          "platform.httpfolded: aLineThatContinuesNothingIsHarmless"}},
        {13,
         area,
         "Cookies, alternative services and links in a reply",
         "Never kept or followed; requests name the program and carry nothing else; HTTP/1.1 only",
         {"robustness.http: requestsSayNoMoreThanTheyMust",
          "platform.http: cookiesAreNeverSentBack",
          "platform.httprequests: aGetSendsNothingBesidesWhatItNames, "
          "aPostSendsItsBodyAndNothingBesidesWhatItNames"}},
        {14,
         area,
         "The service marks its replies with an ETag",
         "An unchanged poll is a 304 without a body, applied as the same reply",
         {"robustness.http: anUnchangedPollCostsNoBody", "platform.httpconditional: *",
          "platform.httpkeptreplies: *", "platform.validators: *"}},
    };
}

std::vector<FaultCase> tokenCases() {
    const char* const area = "Redirects, the token, TLS and proxies";
    return {
        {15,
         area,
         "A redirect to another scheme, host or port; several in a row",
         "Not followed with the token: the redirect is the outcome. At home three hops are "
         "followed",
         {"robustness.token: aRedirectSurvives, upToThreeHopsAreFollowedAtHome, "
          "onlyAuthorisedRequestsAtHomeCarryTheToken",
          "platform.httpredirects: *", "platform.httporigin: *"}},
        {16,
         area,
         "A picture on the service's own host",
         "Fetched without the token",
         {"robustness.token: onlyAuthorisedRequestsAtHomeCarryTheToken",
          "app.capsules: pictureRequestsCarryNoToken"}},
        {17,
         area,
         "A picture's redirect",
         "Each hop passes the link rule; three at the most",
         {"creative.imagecache: everyHopPassesTheLinkRule",
          "app.capsules: aRedirectThatTheLinkRuleAllowsIsFollowed",
          "platform.httpredirects: theRuleIsAskedAboutEachHopWithWhatIsFetchedNext, "
          "threeHopsAreFollowedAndNotFour"}},
        {18,
         area,
         "A token with line breaks, NUL, ten kilobytes, letters beyond ASCII",
         "One well-formed header, or no request at all",
         {"robustness.token: anOddTokenSurvives",
          "platform.httprequests: whatCannotBeSentAsItIsStaysUnsent, "
          "aTokenIsOneHeaderHoweverLongOrForeign"}},
        {19,
         area,
         "Service roots with a password, with an impossible port, ending in a slash, empty, no "
         "address at all",
         "Joined to the path as they are; transfer failed, or silently nothing",
         {"robustness.token: anOddRootSurvives, aRootIsJoinedToThePathAsItIs",
          "host.serviceclient: aRootThatDoesNotParseEndsSilently, "
          "aRootEndingInASlashGivesTwoSlashes",
          "platform.httprequests: anAddressThatTheTwoParsersReadDifferentlyIsNotFetched"}},
        {20,
         area,
         "A certificate that is self-signed, for another name or run out; TLS 1.1; plain HTTP on "
         "the TLS port",
         "Transfer failed; the request was never sent; nothing can switch the check off",
         {"robustness.token: aServiceThatProvesNothingIsToldNothing, "
          "plainHttpOnATlsPortIsToldNothing",
          "platform.httptls: aCertificateOfOurOwnMakingIsRefused, "
          "aTrustedCertificateWithAnotherNameIsRefused, aTrustedCertificateThatHasRunOutIsRefused, "
          "theOldProtocolIsRefused, plainHttpOnATlsPortIsRefused, "
          "anAuthorityIsFoundInAFolderByItsHash"}},
        {21,
         area,
         "A proxy in the environment, sound or broken",
         "This machine is reached without it, https only through its tunnel; a broken one is a "
         "failed transfer",
         {"platform.httpproxy: *"}},
    };
}

std::vector<FaultCase> jsonCases() {
    const char* const area = "JSON";
    return {
        {22,
         area,
         "Every sample of broken and odd JSON, as the body of each endpoint",
         "No crash; what is malformed is never applied, not even in part",
         {"host.hostilejson: theSampleFilesAreAppliedOrRefused, "
          "notEvenWhatStandsBeforeTheFaultIsApplied",
          "host.replyreading: theSampleFilesAreAcceptedAndRefused"}},
        {23,
         area,
         "Each field of each reply with values of every kind, size and sign",
         "The value, or that field's default",
         {"host.replyfields: aFieldOfTheDisplayReply, aFieldOfTheHostReply, aFieldOfACreative"}},
        {24,
         area,
         "Doubled keys, NUL and lone surrogates, a byte-order mark, 100 000 levels, a million "
         "keys, "
         "10 000 creatives",
         "Read as JSON has it, or a failed transfer; harmless in every view",
         {"host.hostilejson: oddTextsAreFailedTransfers, oddObjectsAreAppliedAllTheSame, "
          "aByteOrderMarkIsPassedOver, ofTenThousandCreativesTheFirstOfEachSlotIsShown, "
          "anEscapedNulStaysInItsText, aReplyIsReadUpToItsLimit",
          "host.replyreading: aMillionKeysAreRead", "overlay.hostiletexts: noTextLeavesItsBox",
          "menu.hostiletexts: noTextLeavesItsBox"}},
        {25,
         area,
         "The same body again; two bodies alternating a million times",
         "Nothing is painted or fetched; memory does not grow",
         {"overlay.manyreplies: *",
          "overlay.view: aRenderThatChangesNothingPaintsNothing, aHundredPollsFetchAnImageOnce",
          "menu.hostmenuview: anEqualReplyPaintsNothing"},
         "The test alternates 100 000 times, with capsules 5 000 and with the open panel 2 000; "
         "`BRIMLET_REPLIES=1000000` makes each a million"},
    };
}

std::vector<FaultCase> pictureCases() {
    const char* const area = "Pictures";
    return {
        {26,
         area,
         "Collections of broken pictures, random changes of good ones, a PNG of 57 bytes that "
         "claims "
         "a gibibyte, a WebP whose code tables would take 132 MiB",
         "No crash, within the limits of time and memory",
         {"images.corpora: *", "images.hardening: randomChangesDoNoHarm",
          "images.memory: aClaimedGibibyteCostsNothing, theLargestPicturesStayWithinMemory",
          "images.time: *", "images.codetables: *", "images.surfaces: *"}},
        {27,
         area,
         "Cut at every byte; CMYK, 16 bits, interlaced, turned, animated, one pixel, one column, "
         "transparent; limits just below, at and above",
         "The first frame, upright and at most 128 pixels a side, or none; never a timer",
         {"images.hardening: aCutFileHoldsNoPicture", "images.decoding: *", "images.limits: *",
          "overlay.stillpictures: anAnimationStandsStillWithoutATimer"}},
        {28,
         area,
         "A body of another kind, a page with 200, 404, a lying length",
         "No picture, no file; the next showing asks again",
         {"creative.imageservers: *",
          "creative.imagecache: whatIsNoImageLeavesNoFileAndIsTriedAgain, "
          "aBodyUpToTheLimitIsShownAndKept"}},
        {29,
         area,
         "The caches folder missing, read-only, full, a file in its place, a folder in the file's",
         "The picture is shown from memory all the same",
         {"creative.imagecache: aBadCachesFolderLeavesTheImageInMemory"},
         "A full disk is played by a limit on the size of files"},
    };
}

std::vector<FaultCase> textCases() {
    const char* const area = "Links and texts";
    return {
        {30,
         area,
         "Addresses of every kind of trick",
         "Judged character by character; what was judged is what is fetched and opened, or nothing",
         {"host.linkrule: schemeAndHostDecide", "platform.urlparsers: *",
          "fuzz.corpus: addressesAreReadAlikeByAll"}},
        {31,
         area,
         "A host of letters that look like others",
         "Shown in its encoded form",
         {"overlay.hostiletexts: aLookAlikeIsShownForWhatItIs",
          "overlay.pilltexts: theTooltipIsTheHostAsAddressesWriteIt"}},
        {32,
         area,
         "Markup, ampersands, placeholders, tabs, line breaks of every kind; the collection of "
         "naughty strings",
         "Shown as typed, inside its box, each in less than 50 ms",
         {"overlay.hostiletexts: *", "menu.hostiletexts: *", "creative.naughtystrings: *",
          "overlay.pilltexts: aTooltipShowsTextAsWritten"},
         "The 50 ms are measured by `bench-texts`"},
        {33,
         area,
         "Right to left, overrides, 5 000 combining marks, a million characters",
         "Inside its box; only what can be seen is laid out",
         {"overlay.hostiletexts: *", "menu.hostiletexts: *", "creative.boundedmarks: *",
          "menu.textlines: ofCharactersThatTakeNoRoomAFewLinesAreMadeAtATime"}},
    };
}

std::vector<FaultCase> secretCases() {
    const char* const area = "Secrets and the disk";
    return {
        {34,
         area,
         "No bus, a bus that never answers, no secret service, one that hangs, dies, is locked or "
         "whose prompt is dismissed",
         "Started within two seconds with no token; no secret in a file",
         {"robustness.secrets: theKeyringOfTheSessionHoldsNothingUp, "
          "aFaultySecretServiceHoldsNothingUp, aBusThatDoesNotAnswerHoldsNothingUp, "
          "withoutAWordOnBusesItRunsToo, aSecondStartAndAQuestionGetThroughWithoutABus",
          "platform.silentbuses: *", "platform.secretshung: *", "platform.secretslocked: *"}},
        {35,
         area,
         "A full run with a token that is searched for",
         "Found in no file, command line, environment or output",
         {"robustness.secrets: aSavedTokenIsFoundNowhere",
          "app.privacy: theTokenIsInNoFileCommandLineOrEnvironment, theSearchForTheTokenFindsOne"}},
        {36,
         area,
         "HOME and the XDG folders unset or missing; Turkish, German and C locales",
         "It runs, and amounts still read \"€12.34\"",
         {"robustness.desktop: figuresAreTheSameEverywhere",
          "host.money: theUsersLocaleChangesNothing",
          "platform.xdgcachesfolder: theEnvironmentDecides"}},
    };
}

std::vector<FaultCase> desktopCases() {
    const char* const area = "The desktop";
    return {
        {37,
         area,
         "Screens are added, removed, reordered, rescaled, rotated; the built-in one goes and "
         "comes",
         "The overlay stays with the built-in screen; while that is gone it keeps its place on the "
         "desktop, whatever is there then",
         {"robustness.desktop: theOverlayStaysWithTheBuiltInScreen, "
          "monitorsThatComeAndGoDoNotMoveIt",
          "overlay.panel: whenTheBuiltInScreenGoesTheFrameStays", "platform.qtscreens: *"}},
        {38,
         area,
         "Two hundred sleeps and wakes in ten seconds",
         "One heartbeat for each sleep and one for each wake; no second pair of timers",
         {"robustness.desktop: twoHundredSleepsAreFourHundredHeartbeats",
          "platform.linuxworkspace: twoHundredPairsAreAllTold"}},
        {39,
         area,
         "A second start, a start after kill -9, a tray that comes late, restarts, or never comes",
         "One program, and always a way to its panel",
         {"robustness.desktop: aStartAfterAKillFindsNothingInTheWay, "
          "withoutATrayThePanelOpensAndOneThatComesTakesTheItem",
          "platform.singleinstance: aSecondStartOpensThePanelOfTheFirst, "
          "aProgramThatWasKilledLeavesNothingInTheWay, ofTenStartsAtOnceOneStays",
          "platform.traystatusitem: aTrayThatComesLateShowsIt, "
          "aTrayThatComesBackShowsItAgain"}},
        {40,
         area,
         "SIGTERM, SIGINT, the end of the X server, whatever is under way",
         "Ended within a second",
         {"robustness.desktop: itEndsWithinASecond",
          "platform.singleinstance: terminationEndsItWithinASecond, "
          "terminationIsNotLostWhileItStarts, itEndsWithItsXServer"}},
    };
}

std::vector<FaultCase> longCases() {
    const char* const area = "Long life";
    return {
        {41,
         area,
         "100 000 replies at full speed, half of them with a random fault",
         "Memory within a mebibyte, descriptors and threads as before",
         {"robustness.longlife: aHundredThousandRepliesLeaveNothingBehind"},
         "With the whole program: `script/soak --faults`"},
        {42,
         area,
         "A day of ticks",
         "Exactly 28 800 queries and 96 + 1 heartbeats",
         {"robustness.longlife: aDayHasItsQueriesAndHeartbeatsAndNotOneMore"},
         "With the whole program at sixty times the speed: `script/soak --day`"},
        {43,
         area,
         "Mistakes with memory, numbers and threads",
         "No report of a sanitizer, none of our own code left out",
         {},
         "Every test, by `script/test --preset asan` and `script/test --preset tsan`"},
        {44,
         area,
         "Replies, addresses and pictures that a fuzzer invents",
         "No finding",
         {"fuzz.corpus: *"},
         "`script/fuzz SECONDS`; the checks run it for 15 seconds each"},
    };
}

} // namespace

const std::vector<FaultCase>& faultCases() {
    static const std::vector<FaultCase> cases = [] {
        std::vector<FaultCase> all;
        for (const auto& part :
             {transportCases(), httpCases(), tokenCases(), jsonCases(), pictureCases(), textCases(),
              secretCases(), desktopCases(), longCases()}) {
            all.insert(all.end(), part.cbegin(), part.cend());
        }
        return all;
    }();
    return cases;
}

} // namespace brimlet
