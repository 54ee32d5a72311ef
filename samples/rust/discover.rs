// Not yet run. Finds the instruments on the network and asks each who it is.
//
//   cargo run --bin discover
mod kesp;

use windows::core::{Result, BSTR};
use windows::Win32::System::Com::IDispatch;
use windows::Win32::System::Variant::VARIANT;

const SCK_UDP_PROTOCOL: i32 = 1;

fn text(object: &IDispatch, name: &str) -> Result<BSTR> {
    BSTR::try_from(&kesp::get(object, name)?)
}

fn main() -> Result<()> {
    let tcp = kesp::create("CKespTCP")?;
    // One broadcast to everybody, over UDP; what answers is asked over TCP.
    kesp::put(&tcp, "Protocol", SCK_UDP_PROTOCOL)?;
    let mut nothing = VARIANT::default();
    let found = kesp::call(&tcp, "AutoDetect", &mut [kesp::by_reference(&mut nothing)])?;

    let devices = IDispatch::try_from(&kesp::get(&tcp, "Devices")?)?;
    for position in 1..=i32::try_from(&kesp::get(&devices, "Count")?)? {
        let instrument = IDispatch::try_from(&kesp::call(&devices, "Item", &mut [position.into()])?)?;
        let (address, model) = (text(&instrument, "IPAddress")?, text(&instrument, "Model")?);
        println!("instrument:  {address}  model {model}  serial {}", text(&instrument, "Serial")?);
    }
    if !bool::try_from(&found)? {
        println!("nobody answered");
        std::process::exit(1);
    }
    Ok(())
}
