// Not yet run. Looks for an instrument at an address, shows what is tried, and stops after so many commands.
//
//   cargo run --bin detect [host [port [commands]]]
mod kesp;
mod sink;

use std::cell::Cell;
use windows::core::{Result, BSTR, GUID};
use windows::Win32::Foundation::VARIANT_TRUE;
use windows::Win32::System::Variant::VARIANT;

const EVENTS_OF_TCP: GUID = GUID::from_u128(0x14388762_eff3_4ea3_842b_dcf436c0ded9);
const AUTO_DETECT_UPDATE: i32 = 13;
const AUTO_DETECT_END: i32 = 15;

fn argument(position: usize, otherwise: &str) -> String {
    std::env::args().nth(position).unwrap_or(otherwise.into())
}

fn watch(event: i32, arguments: &[VARIANT], tried: &Cell<i32>, allowed: i32) -> Result<()> {
    if event == AUTO_DETECT_END {
        println!("ended:       after {} commands", tried.get());
    } else if event == AUTO_DETECT_UPDATE && tried.get() == allowed {
        println!("stopped:     before {}", BSTR::try_from(&arguments[3])?);
        // Abort, the last argument, points to the library's own variable.
        unsafe { arguments[0].Anonymous.Anonymous.Anonymous.pboolVal.write(VARIANT_TRUE) };
    } else if event == AUTO_DETECT_UPDATE {
        tried.set(tried.get() + 1);
        let (cmd, address) = (BSTR::try_from(&arguments[3])?, BSTR::try_from(&arguments[2])?);
        println!("trying:      {cmd} at {address}:{}", i16::try_from(&arguments[1])?);
    }
    Ok(())
}

fn main() -> Result<()> {
    let tcp = kesp::create("CKespTCP")?;
    kesp::put(&tcp, "IPAddress", argument(1, "127.0.0.1").as_str())?;
    kesp::put(&tcp, "Port", argument(2, "10001").parse::<i32>().expect("a number"))?;
    let (tried, allowed) = (Cell::new(0), argument(3, "2").parse().expect("a number"));
    let heard = move |event, arguments: &[VARIANT]| watch(event, arguments, &tried, allowed).expect("an event");
    let (point, cookie) = sink::connect(&tcp, &EVENTS_OF_TCP, Box::new(heard))?;

    let mut result = VARIANT::default();
    let found = kesp::call(&tcp, "AutoDetect", &mut [kesp::by_reference(&mut result)])?;
    unsafe { point.Unadvise(cookie)? };
    kesp::call(&tcp, "Uninitialize", &mut [])?;
    if !bool::try_from(&found)? {
        println!("nothing found");
        std::process::exit(1);
    }
    println!("reply:       {}", BSTR::try_from(&result)?);
    Ok(())
}
