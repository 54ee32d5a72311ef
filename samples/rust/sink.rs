// Not yet run. An event handler of the library: a function that hears the events of one interface.
use windows::core::{implement, Interface, Result, GUID, PCWSTR};
use windows::Win32::Foundation::E_NOTIMPL;
use windows::Win32::System::Com::*;
use windows::Win32::System::Variant::VARIANT;

type Heard = Box<dyn Fn(i32, &[VARIANT])>;

#[implement(IDispatch)]
struct Sink {
    heard: Heard,
}

// The arguments of an event come in reverse: the last one is the first.
pub fn connect(source: &IDispatch, events: &GUID, heard: Heard) -> Result<(IConnectionPoint, u32)> {
    let sink: IDispatch = Sink { heard }.into();
    unsafe {
        let point = source.cast::<IConnectionPointContainer>()?.FindConnectionPoint(events)?;
        let cookie = point.Advise(&sink)?;
        Ok((point, cookie))
    }
}

impl IDispatch_Impl for Sink_Impl {
    fn GetTypeInfoCount(&self) -> Result<u32> {
        Ok(0)
    }

    fn GetTypeInfo(&self, _: u32, _: u32) -> Result<ITypeInfo> {
        Err(E_NOTIMPL.into())
    }

    fn GetIDsOfNames(&self, _: *const GUID, _: *const PCWSTR, _: u32, _: u32, _: *mut i32) -> Result<()> {
        Err(E_NOTIMPL.into())
    }

    #[rustfmt::skip]
    fn Invoke(
        &self, event: i32, _: *const GUID, _: u32, _: DISPATCH_FLAGS, given: *const DISPPARAMS,
        _: *mut VARIANT, _: *mut EXCEPINFO, _: *mut u32,
    ) -> Result<()> {
        let given = unsafe { &*given };
        let count = given.cArgs as usize;
        // An event without arguments may come with no list at all.
        let arguments = if count == 0 { &[][..] } else { unsafe { std::slice::from_raw_parts(given.rgvarg, count) } };
        (self.heard)(event, arguments);
        Ok(())
    }
}
