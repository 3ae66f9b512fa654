#pragma once

class OVTrackingButton;

/// Lets assistive technology see every OVTrackingButton as a button with a press action, checkable
/// if it is a switch, under its accessible name. Must have run before such a button is first asked
/// for its interface; the button's constructor sees to it. Further calls do nothing.
///
/// Threads: main. Real-time: not safe.
void OVInstallButtonAccessibility();

/// Tells assistive technology, if any listens, that the on state of a switch changed.
void OVAnnounceButtonState(OVTrackingButton* button);
